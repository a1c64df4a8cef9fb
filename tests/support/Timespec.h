// Points and lengths of time as whole nanoseconds, which 32-bit systems cannot do with their own
// types.
#pragma once

#include <cstdint>
#include <ctime>

namespace vantric_test {

constexpr int64_t nanosecondsPerSecond = 1'000'000'000;

constexpr int64_t nanosecondsOf(const timespec& time) {
    return int64_t{time.tv_sec} * nanosecondsPerSecond + time.tv_nsec;
}

// For times from 0 on.
constexpr timespec timespecOf(int64_t nanoseconds) {
    timespec result = {};
    result.tv_sec = static_cast<time_t>(nanoseconds / nanosecondsPerSecond);
    result.tv_nsec = static_cast<long>(nanoseconds % nanosecondsPerSecond);
    return result;
}

}  // namespace vantric_test
