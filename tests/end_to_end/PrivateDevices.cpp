#include "tests/end_to_end/PrivateDevices.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace vantric_test {

namespace {

constexpr const char* devices = "/dev";
constexpr const char* consolePath = "/dev/console";

void mountOrThrow(const std::string& source, const std::string& target, const char* type,
                  unsigned long flags) {
    if (mount(source.c_str(), target.c_str(), type, flags, nullptr) != 0) {
        throw std::system_error(errno, std::generic_category(), "mounting " + target);
    }
}

}  // namespace

PrivateDevices::PrivateDevices() {
    mountOrThrow("tmpfs", folder_.path(), "tmpfs", MS_NOSUID);
    try {
        lay();
    } catch (...) {
        umount2(folder_.path().c_str(), MNT_DETACH);
        throw;
    }
}

PrivateDevices::~PrivateDevices() {
    close(consoleDescriptor_);
    umount2(devices, MNT_DETACH);
    umount2(folder_.path().c_str(), MNT_DETACH);
}

void PrivateDevices::lay() {
    std::filesystem::create_directory(folder_ / "shm");
    mountOrThrow("/dev/shm", folder_ / "shm", nullptr, MS_BIND);
    mountOrThrow("/dev/null", folder_.write("null", ""), nullptr, MS_BIND);
    mountOrThrow(folder_.path(), devices, nullptr, MS_BIND | MS_REC);
    // Open at both ends, so that neither side ever waits for the other.
    if (mkfifo(consolePath, S_IRUSR | S_IWUSR) == 0) {
        consoleDescriptor_ = open(consolePath, O_RDWR | O_NONBLOCK | O_CLOEXEC);
    }
    if (consoleDescriptor_ == -1) {
        const int error = errno;
        umount2(devices, MNT_DETACH);
        throw std::system_error(error, std::generic_category(), "creating a console");
    }
}

std::string PrivateDevices::console() {
    char block[4096];
    ssize_t size = 0;
    while ((size = read(consoleDescriptor_, block, sizeof(block))) > 0) {
        consoleText_.append(block, static_cast<std::size_t>(size));
    }
    return consoleText_;
}

}  // namespace vantric_test
