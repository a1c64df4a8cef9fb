// A /dev/shm with room for next to nothing, laid over the private one while the object lives.
#pragma once

#include <sys/mount.h>

#include <cerrno>
#include <string>
#include <system_error>

namespace vantric_test {

class TinySharedMemory {
  public:
    // `size` as the file system's mount option has it. Throws std::system_error when mounting
    // fails.
    explicit TinySharedMemory(const std::string& size) {
        const std::string options = "mode=1777,size=" + size;
        if (mount("tmpfs", "/dev/shm", "tmpfs", MS_NOSUID | MS_NODEV, options.c_str()) != 0) {
            throw std::system_error(errno, std::generic_category(), "mounting");
        }
    }

    ~TinySharedMemory() { umount2("/dev/shm", MNT_DETACH); }

    TinySharedMemory(const TinySharedMemory&) = delete;
    TinySharedMemory& operator=(const TinySharedMemory&) = delete;
};

}  // namespace vantric_test
