// The time stamps of log lines stand still in this program, at a date with two digits everywhere:
// what a line costs then depends neither on the day nor on a second that passes while counting. The
// clock that judges the age of a state goes on.
#include <sys/time.h>
#include <time.h>

namespace {

constexpr time_t lastSecondsOf2026 = 1798761598;

}  // namespace

// Both stand before the C library's own for the whole program.

extern "C" time_t time(time_t* now) noexcept {
    if (now != nullptr) {
        *now = lastSecondsOf2026;
    }
    return lastSecondsOf2026;
}

extern "C" int gettimeofday(timeval* now, void* /*zone*/) noexcept {
    now->tv_sec = lastSecondsOf2026;
    now->tv_usec = 0;
    return 0;
}
