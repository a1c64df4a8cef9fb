#include "tests/support/PrivateSharedMemory.h"

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <system_error>

namespace vantric_test {

namespace {

constexpr int forbiddenStatus = 3;

[[noreturn]] void stop(const char* step) {
    const std::string reason = std::system_category().message(errno);
    std::fprintf(
        stderr,
        "The tests need a private /dev/shm, which this system forbids (%s: %s). Run them as "
        "root or allow unprivileged user namespaces.\n",
        step, reason.c_str());
    std::_Exit(forbiddenStatus);
}

void writeFile(const std::string& path, const std::string& text) {
    std::ofstream(path) << text;
}

void enterMountNamespace() {
    if (unshare(CLONE_NEWNS) == 0) {
        return;
    }
    const std::string user = std::to_string(geteuid());
    const std::string group = std::to_string(getegid());
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
        stop("unshare");
    }
    writeFile("/proc/self/setgroups", "deny");
    writeFile("/proc/self/uid_map", user + " " + user + " 1");
    writeFile("/proc/self/gid_map", group + " " + group + " 1");
}

}  // namespace

void enterPrivateSharedMemory() {
    enterMountNamespace();
    if (mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
        stop("making mounts private");
    }
    if (mount("tmpfs", "/dev/shm", "tmpfs", MS_NOSUID | MS_NODEV, "mode=1777") != 0) {
        stop("mounting /dev/shm");
    }
}

}  // namespace vantric_test
