// A folder on a disk of its own that holds a given number of bytes and no more.
#pragma once

#include <sys/mount.h>

#include <cerrno>
#include <cstddef>
#include <string>
#include <system_error>

#include "tests/support/TemporaryFolder.h"

namespace vantric_test {

// Room for one file of this size, or for any number of files without content.
constexpr std::size_t smallestDisk = 4096;

class SmallDisk {
  public:
    // `bytes` is rounded up to whole pages. Needs the private mount namespace that every test
    // process has. Throws std::system_error when mounting fails.
    explicit SmallDisk(std::size_t bytes) {
        const std::string options = "size=" + std::to_string(bytes);
        if (mount("tmpfs", folder_.path().c_str(), "tmpfs", MS_NOSUID | MS_NODEV,
                  options.c_str()) != 0) {
            throw std::system_error(errno, std::generic_category(), "mounting a small disk");
        }
    }

    ~SmallDisk() { umount2(folder_.path().c_str(), MNT_DETACH); }

    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    const std::filesystem::path& path() const { return folder_.path(); }
    std::string operator/(const std::string& name) const { return folder_ / name; }

    // From now on nothing on the disk can be changed.
    void makeReadOnly() {
        if (mount(nullptr, path().c_str(), nullptr,
                  MS_REMOUNT | MS_BIND | MS_RDONLY | MS_NOSUID | MS_NODEV, nullptr) != 0) {
            throw std::system_error(errno, std::generic_category(), "protecting a small disk");
        }
    }

  private:
    TemporaryFolder folder_;
};

}  // namespace vantric_test
