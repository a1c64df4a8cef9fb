#include "tests/transcripts/Hindrance.h"

#include <sys/mount.h>
#include <sys/resource.h>

#include <cerrno>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <system_error>

#include "tests/support/RawSemaphore.h"
#include "tests/support/SmallFileSystem.h"

namespace vantric_test {

namespace {

namespace fs = std::filesystem;

constexpr const char* sharedMemory = "/dev/shm";
constexpr std::chrono::milliseconds betweenTwoAttempts = 2500ms;

void check(int result, const char* step) {
    if (result != 0) {
        throw std::system_error(errno, std::generic_category(), step);
    }
}

// The client may have only so much of a resource from one moment on until another.
Hindrance limited(__rlimit_resource resource, rlim_t most, std::chrono::milliseconds begin,
                  std::chrono::milliseconds end, const char* description) {
    const auto usual = std::make_shared<rlimit>();
    Hindrance hindrance;
    hindrance.description = description;
    hindrance.raisedAt = begin;
    hindrance.liftedAt = end;
    hindrance.raise = [=](const ChildProcess& client, SteppedClock&) {
        check(prlimit(client.pid(), resource, nullptr, usual.get()), "prlimit");
        const rlimit lowered = {most, usual->rlim_max};
        check(prlimit(client.pid(), resource, &lowered, nullptr), "prlimit");
    };
    hindrance.lift = [=](const ChildProcess& client, SteppedClock&) {
        // A client that has ended by now is no process any more.
        if (prlimit(client.pid(), resource, usual.get(), nullptr) != 0 && errno != ESRCH) {
            check(-1, "prlimit");
        }
    };
    return hindrance;
}

// The state is published again a millisecond later, so no client finds it stale.
Hindrance wallClockSet(std::chrono::nanoseconds step, const char* description) {
    Hindrance hindrance;
    hindrance.description = description;
    hindrance.raisedAt = 1999ms;
    hindrance.raise = [step](const ChildProcess&, SteppedClock& clock) {
        clock.setWallClock(step);
    };
    return hindrance;
}

void makeRoom() {
    constexpr unsigned long flags = MS_REMOUNT | MS_NOSUID | MS_NODEV;
    check(mount("tmpfs", sharedMemory, nullptr, flags, "size=1m"), "remounting");
}

Hindrance foreignObjectsUntil(std::chrono::milliseconds end, const char* description) {
    const auto modes = std::make_shared<std::map<fs::path, fs::perms>>();
    Hindrance hindrance;
    hindrance.description = description;
    hindrance.needsObedientClient = true;
    hindrance.liftedAt = end;
    hindrance.raise = [modes](const ChildProcess&, SteppedClock&) {
        for (const auto& entry : fs::directory_iterator(sharedMemory)) {
            (*modes)[entry.path()] = entry.status().permissions();
            fs::permissions(entry.path(), fs::perms::none);
        }
    };
    hindrance.lift = [modes](const ChildProcess&, SteppedClock&) {
        for (const auto& [path, mode] : *modes) {
            fs::permissions(path, mode);
        }
    };
    return hindrance;
}

}  // namespace

Hindrance noHindrance() {
    return {};
}

Hindrance foreignObjects() {
    return foreignObjectsUntil(betweenTwoAttempts,
                               "the objects are another user's until 00:00:02.500");
}

Hindrance foreignObjectsForLong() {
    return foreignObjectsUntil(400500ms, "the objects are another user's until 00:06:40.500");
}

Hindrance noDescriptors() {
    return limited(RLIMIT_NOFILE, 3, 0ms, betweenTwoAttempts,
                   "no descriptor is left until 00:00:02.500");
}

Hindrance fullSharedMemory() {
    const auto tiny = std::make_shared<std::optional<SmallFileSystem>>();
    Hindrance hindrance;
    hindrance.description = "/dev/shm has room for two of the four objects until 00:00:02.500";
    hindrance.liftedAt = betweenTwoAttempts;
    hindrance.raise = [tiny](const ChildProcess&, SteppedClock&) {
        tiny->emplace(sharedMemory, "24k");
    };
    hindrance.lift = [tiny](const ChildProcess&, SteppedClock&) { makeRoom(); };
    return hindrance;
}

Hindrance heldCommandChannel() {
    constexpr const char* lock = "ModemCommandsShmLock";
    Hindrance hindrance;
    hindrance.description =
        "another process holds the command channel's lock from 00:00:01.000 on until "
        "00:00:05.000";
    hindrance.raisedAt = 1000ms;
    hindrance.liftedAt = 5000ms;
    hindrance.raise = [](const ChildProcess&, SteppedClock&) {
        if (!RawSemaphore(lock).tryTake()) {
            throw std::runtime_error("the command channel's lock is not free");
        }
    };
    hindrance.lift = [](const ChildProcess&, SteppedClock&) { RawSemaphore(lock).post(); };
    return hindrance;
}

Hindrance noMemory() {
    return limited(RLIMIT_AS, 1, 1000ms, 5500ms,
                   "the client gets no more memory from 00:00:01.000 on until 00:00:05.500");
}

Hindrance wallClockSetForwards() {
    return wallClockSet(10min, "the wall clock is set 10 minutes forwards at 00:00:01.999");
}

Hindrance wallClockSetBackwards() {
    return wallClockSet(-10min, "the wall clock is set 10 minutes backwards at 00:00:01.999");
}

Hindrance slowLocks() {
    Hindrance hindrance;
    hindrance.description = "the client loses 300ms whenever it frees a lock";
    hindrance.raise = [](const ChildProcess&, SteppedClock& clock) { clock.pauseAtUnlock(300ms); };
    return hindrance;
}

}  // namespace vantric_test
