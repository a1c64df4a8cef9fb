#include "bench/support/InstantSleep.h"

#include <time.h>

namespace vantric_bench {

void (*whileSleeping)() = nullptr;

}  // namespace vantric_bench

// Both stand before the C library's own for the whole program.

extern "C" int nanosleep(const timespec* /*duration*/, timespec* /*remaining*/) {
    if (vantric_bench::whileSleeping != nullptr) {
        vantric_bench::whileSleeping();
    }
    return 0;
}

extern "C" int clock_nanosleep(clockid_t /*clock*/, int /*flags*/, const timespec* duration,
                               timespec* remaining) {
    return nanosleep(duration, remaining);
}
