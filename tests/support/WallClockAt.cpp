#include "tests/support/WallClockAt.h"

#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>

namespace {

// Plain data: the clock is read before statics are constructed.
bool isSet = false;
int64_t shownSeconds = 0;

}  // namespace

namespace vantric_test {

WallClockAt::WallClockAt(int64_t seconds) {
    shownSeconds = seconds;
    isSet = true;
}

WallClockAt::~WallClockAt() {
    isSet = false;
}

}  // namespace vantric_test

extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
    if (!isSet || clock != CLOCK_REALTIME) {
        return static_cast<int>(syscall(SYS_clock_gettime, clock, time));
    }
    const auto seconds = static_cast<time_t>(shownSeconds);
    if (seconds != shownSeconds) {
        errno = EOVERFLOW;
        return -1;
    }
    *time = {seconds, 0};
    return 0;
}

extern "C" time_t time(time_t* result) noexcept {
    timespec now = {};
    const time_t seconds = clock_gettime(CLOCK_REALTIME, &now) == 0 ? now.tv_sec : -1;
    if (result != nullptr) {
        *result = seconds;
    }
    return seconds;
}
