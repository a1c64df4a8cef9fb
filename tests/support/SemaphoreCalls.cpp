#include "tests/support/SemaphoreCalls.h"

#include <dlfcn.h>

#include <cstring>
#include <utility>

namespace vantric_test {

namespace {

SemaphoreObserver& observer() {
    static SemaphoreObserver current;
    return current;
}

void tell(SemaphoreMoment moment, const sem_t* semaphore) {
    if (observer()) {
        observer()(moment, semaphore);
    }
}

// The system's function of that name, the next one in the search order.
template <class Function>
Function systems(const char* name) {
    void* address = dlsym(RTLD_NEXT, name);
    Function function = nullptr;
    std::memcpy(&function, &address, sizeof(function));
    return function;
}

int told(int result, const sem_t* semaphore) {
    tell(result == 0 ? SemaphoreMoment::Taken : SemaphoreMoment::NotTaken, semaphore);
    return result;
}

}  // namespace

void observeSemaphoreCalls(SemaphoreObserver newObserver) {
    observer() = std::move(newObserver);
}

}  // namespace vantric_test

using namespace vantric_test;

extern "C" int sem_wait(sem_t* semaphore) {
    static auto* const systemsWait = systems<int (*)(sem_t*)>("sem_wait");
    tell(SemaphoreMoment::AboutToWait, semaphore);
    return told(systemsWait(semaphore), semaphore);
}

extern "C" int sem_timedwait(sem_t* semaphore, const timespec* deadline) {
    static auto* const systemsWait = systems<int (*)(sem_t*, const timespec*)>("sem_timedwait");
    tell(SemaphoreMoment::AboutToTry, semaphore);
    return told(systemsWait(semaphore, deadline), semaphore);
}

extern "C" int sem_post(sem_t* semaphore) noexcept {
    static auto* const systemsPost = systems<int (*)(sem_t*)>("sem_post");
    tell(SemaphoreMoment::AboutToPost, semaphore);
    const int result = systemsPost(semaphore);
    tell(SemaphoreMoment::Posted, semaphore);
    return result;
}
