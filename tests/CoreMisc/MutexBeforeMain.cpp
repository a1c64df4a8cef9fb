// A program in which no POSIX mutex can be initialised. It logs nothing itself, so whatever its log
// holds was written before main(). Its exit status is the number of mutexes that were destroyed.
#include <pthread.h>
#include <unistd.h>

#include <cerrno>

#include "CoreMisc/src/VyLog.h"

namespace {

int destroyed = 0;

// Runs after every static's destructor.
struct ReportAtTheEnd {
    ReportAtTheEnd& operator=(ReportAtTheEnd&&) = delete;
    ~ReportAtTheEnd() {
        if (destroyed != 0) {
            _exit(destroyed);
        }
    }
};

__attribute__((init_priority(101))) const ReportAtTheEnd reportAtTheEnd;

}  // namespace

extern "C" int pthread_mutex_init(pthread_mutex_t*, const pthread_mutexattr_t*) noexcept {
    return ENOMEM;
}

extern "C" int pthread_mutex_destroy(pthread_mutex_t*) noexcept {
    ++destroyed;
    return 0;
}

int main() {
    return com_qel::VyLog::TraceMask() == 0 ? 0 : 1;
}
