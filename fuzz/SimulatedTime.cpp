#include "fuzz/SimulatedTime.h"

#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <utility>

#include "fuzz/Target.h"
#include "tests/support/Timespec.h"

namespace vantric_fuzz {

namespace {

using vantric_test::nanosecondsOf;
using vantric_test::timespecOf;

constexpr int64_t durationOfALook = 20'000'000;
constexpr int mostEvents = 20'000;

// Plain data: the clock is read before this program's statics are constructed.
bool isSimulated = false;
timespec wallTime;
int64_t steadyTime;  // nanoseconds
int events;

std::function<void()>& sleepAction() {
    static std::function<void()>& action = *new std::function<void()>;
    return action;
}

void countEvent() {
    if (++events > mostEvents) {
        fail("an operation that may block comes to an end");
    }
}

int readSystemClock(clockid_t clock, timespec* time) {
    return static_cast<int>(syscall(SYS_clock_gettime, clock, time));
}

}  // namespace

SimulatedTime::SimulatedTime(std::function<void()> duringSleep) {
    readSystemClock(CLOCK_REALTIME, &wallTime);
    steadyTime = 0;
    events = 0;
    sleepAction() = std::move(duringSleep);
    isSimulated = true;
}

SimulatedTime::~SimulatedTime() {
    isSimulated = false;
}

int64_t SimulatedTime::wallSeconds() const {
    return wallTime.tv_sec;
}

}  // namespace vantric_fuzz

extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
    using namespace vantric_fuzz;
    if (!isSimulated || (clock != CLOCK_REALTIME && clock != CLOCK_MONOTONIC)) {
        return readSystemClock(clock, time);
    }
    if (clock == CLOCK_REALTIME) {
        *time = wallTime;
        return 0;
    }
    countEvent();
    steadyTime += durationOfALook;
    *time = timespecOf(steadyTime);
    return 0;
}

extern "C" int nanosleep(const timespec* duration, timespec* rest) {
    using namespace vantric_fuzz;
    if (!isSimulated) {
        return static_cast<int>(syscall(SYS_nanosleep, duration, rest));
    }
    countEvent();
    steadyTime += nanosecondsOf(*duration);
    sleepAction()();
    return 0;
}
