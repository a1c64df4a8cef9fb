#include "tests/CoreMisc/MutexFault.h"

#include <dlfcn.h>

#include <atomic>
#include <functional>

namespace vantric_test {

namespace {

struct Fault {
    MutexCall call;
    int result;
    const char* begin;
    const char* end;
    bool hadAttributes;
};

Fault fault = {};
std::atomic<bool> isActive{false};

bool concerns(MutexCall call, const void* mutex) {
    const auto* address = static_cast<const char*>(mutex);
    return isActive && call == fault.call && !std::less<>()(address, fault.begin) &&
           std::less<>()(address, fault.end);
}

template <class Function>
Function nextDefinition(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

}  // namespace

MutexFault::MutexFault(MutexCall call, int result, const void* memory, std::size_t size) {
    const auto* begin = static_cast<const char*>(memory);
    fault = {call, result, begin, begin + size, false};
    isActive = true;
}

MutexFault::~MutexFault() {
    isActive = false;
}

bool MutexFault::hadAttributes() const {
    return fault.hadAttributes;
}

}  // namespace vantric_test

// These definitions stand in front of the C library's.

using namespace vantric_test;

extern "C" int pthread_mutex_init(pthread_mutex_t* mutex,
                                  const pthread_mutexattr_t* attributes) noexcept {
    static const auto next = nextDefinition<decltype(&pthread_mutex_init)>("pthread_mutex_init");
    const int result = next(mutex, attributes);
    if (!concerns(MutexCall::initialise, mutex)) {
        return result;
    }
    fault.hadAttributes = attributes != nullptr;
    return fault.result;
}

extern "C" int pthread_mutex_destroy(pthread_mutex_t* mutex) noexcept {
    static const auto next =
        nextDefinition<decltype(&pthread_mutex_destroy)>("pthread_mutex_destroy");
    const int result = next(mutex);
    return concerns(MutexCall::destroy, mutex) ? fault.result : result;
}

extern "C" int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
    static const auto next = nextDefinition<decltype(&pthread_mutex_lock)>("pthread_mutex_lock");
    return concerns(MutexCall::lock, mutex) ? fault.result : next(mutex);
}

extern "C" int pthread_mutex_unlock(pthread_mutex_t* mutex) noexcept {
    static const auto next =
        nextDefinition<decltype(&pthread_mutex_unlock)>("pthread_mutex_unlock");
    return concerns(MutexCall::unlock, mutex) ? fault.result : next(mutex);
}
