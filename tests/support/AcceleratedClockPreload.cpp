// Preloaded into a program, lets its time pass faster: since its start, the clocks have gone on by
// VANTRIC_CLOCK_FACTOR times what they really did, and a sleep takes as much less.
#include <dlfcn.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <ctime>

#include "tests/support/Timespec.h"

namespace {

using vantric_test::nanosecondsOf;
using vantric_test::timespecOf;

template <class Function>
Function original(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

int64_t realNow(clockid_t clock) {
    static const auto readClock = original<int (*)(clockid_t, timespec*)>("clock_gettime");
    timespec now = {};
    readClock(clock, &now);
    return nanosecondsOf(now);
}

struct Acceleration {
    int64_t factor = 1;
    int64_t wallStart = realNow(CLOCK_REALTIME);
    int64_t monotonicStart = realNow(CLOCK_MONOTONIC);

    Acceleration() noexcept {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): the program has one thread when it starts
        const char* text = std::getenv("VANTRIC_CLOCK_FACTOR");
        const long long number = text != nullptr ? std::strtoll(text, nullptr, 10) : 0;
        if (number < 1) {
            std::abort();  // whoever preloads this gives a factor
        }
        factor = number;
    }
};

// Other libraries may ask for the time before this one is initialised.
const Acceleration& acceleration() {
    static const Acceleration instance;
    return instance;
}

}  // namespace

extern "C" {

int clock_gettime(clockid_t clock, timespec* time) noexcept {
    const int64_t now = realNow(clock);
    if (clock == CLOCK_REALTIME || clock == CLOCK_MONOTONIC) {
        const int64_t start =
            clock == CLOCK_REALTIME ? acceleration().wallStart : acceleration().monotonicStart;
        *time = timespecOf(start + (now - start) * acceleration().factor);
    } else {
        *time = timespecOf(now);
    }
    return 0;
}

time_t time(time_t* result) noexcept {
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    if (result != nullptr) {
        *result = now.tv_sec;
    }
    return now.tv_sec;
}

int nanosleep(const timespec* duration, timespec* remaining) {
    static const auto sleep = original<int (*)(const timespec*, timespec*)>("nanosleep");
    const timespec shortened = timespecOf(nanosecondsOf(*duration) / acceleration().factor);
    timespec left = {};
    const int result = sleep(&shortened, &left);
    if (result != 0 && errno == EINTR && remaining != nullptr) {
        *remaining = timespecOf(nanosecondsOf(left) * acceleration().factor);
    }
    return result;
}

}  // extern "C"
