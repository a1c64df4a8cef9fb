// File systems with little room. They need the private mount namespace that every test process has.
#pragma once

#include <sys/mount.h>

#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

#include "tests/support/TemporaryFolder.h"

namespace vantric_test {

// Lies over a folder while the object lives.
class SmallFileSystem {
  public:
    // `size` as the mount option has it, rounded up to whole pages. Throws std::system_error when
    // mounting fails.
    SmallFileSystem(std::string folder, const std::string& size) : folder_(std::move(folder)) {
        const std::string options = "mode=1777,size=" + size;
        if (mount("tmpfs", folder_.c_str(), "tmpfs", MS_NOSUID | MS_NODEV, options.c_str()) != 0) {
            throw std::system_error(errno, std::generic_category(), "mounting");
        }
    }

    ~SmallFileSystem() { umount2(folder_.c_str(), MNT_DETACH); }
    SmallFileSystem& operator=(SmallFileSystem&&) = delete;

  private:
    std::string folder_;
};

// A folder on a disk of its own.
class SmallDisk : public TemporaryFolder {
  public:
    explicit SmallDisk(std::size_t bytes) : fileSystem_(path(), std::to_string(bytes)) {}

  private:
    SmallFileSystem fileSystem_;
};

}  // namespace vantric_test
