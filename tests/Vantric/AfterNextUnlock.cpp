#include "tests/Vantric/AfterNextUnlock.h"

#include <dlfcn.h>
#include <semaphore.h>

#include <cstring>
#include <utility>

namespace vantric_test {

namespace {

std::function<void()>& nextAction() {
    static std::function<void()> action;
    return action;
}

}  // namespace

void afterNextUnlock(std::function<void()> action) {
    nextAction() = std::move(action);
}

}  // namespace vantric_test

// Stands before the system's function of this name, which it calls.
extern "C" int sem_post(sem_t* semaphore) noexcept {
    static int (*const systemsPost)(sem_t*) = [] {
        void* address = dlsym(RTLD_NEXT, "sem_post");
        int (*function)(sem_t*) = nullptr;
        std::memcpy(&function, &address, sizeof(function));
        return function;
    }();
    const int result = systemsPost(semaphore);
    if (const auto action = std::exchange(vantric_test::nextAction(), nullptr)) {
        action();
    }
    return result;
}
