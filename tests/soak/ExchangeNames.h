// The shared objects of the exchange by number, and their semaphores, all eight of them open.
#pragma once

#include <fcntl.h>
#include <semaphore.h>

#include <array>
#include <cstddef>
#include <string>

#include "tests/soak/Supervision.h"

namespace vantric_soak {

constexpr std::size_t objectCount = 4;
constexpr std::array<const char*, objectCount> objectNames = {"ModemStateShm", "ModemStateEx",
                                                              "ModemWifiList", "ModemCommandsShm"};
constexpr std::size_t commandsObject = 3;

// Locks are numbered: each object's contents lock, then its provider lock.
constexpr std::size_t lockCount = 2 * objectCount;

constexpr std::size_t contentsLockOf(std::size_t object) {
    return 2 * object;
}

constexpr std::size_t providerLockOf(std::size_t object) {
    return 2 * object + 1;
}

constexpr bool isProviderLock(std::size_t lock) {
    return lock % 2 == 1;
}

inline std::string lockName(std::size_t lock) {
    return std::string(objectNames.at(lock / 2)) + (isProviderLock(lock) ? "ProviderLock" : "Lock");
}

// While this object lives, every opening of these semaphores in this process and the processes it
// forks gives the same handles.
class ExchangeSemaphores {
  public:
    ExchangeSemaphores() {
        for (std::size_t lock = 0; lock < lockCount; ++lock) {
            handles_.at(lock) = sem_open(lockName(lock).c_str(), 0);
            require(handles_.at(lock) != SEM_FAILED, "there is no semaphore " + lockName(lock));
        }
    }

    ~ExchangeSemaphores() {
        for (sem_t* handle : handles_) {
            sem_close(handle);
        }
    }

    ExchangeSemaphores(const ExchangeSemaphores&) = delete;
    ExchangeSemaphores& operator=(const ExchangeSemaphores&) = delete;

    // The number of the lock; lockCount for a foreign semaphore.
    std::size_t lockOf(const sem_t* handle) const {
        std::size_t lock = 0;
        while (lock < lockCount && handles_.at(lock) != handle) {
            ++lock;
        }
        return lock;
    }

    int value(std::size_t lock) const {
        int result = -1;
        sem_getvalue(handles_.at(lock), &result);
        return result;
    }

    std::array<int, lockCount> values() const {
        std::array<int, lockCount> result = {};
        for (std::size_t lock = 0; lock < lockCount; ++lock) {
            result.at(lock) = value(lock);
        }
        return result;
    }

  private:
    std::array<sem_t*, lockCount> handles_ = {};
};

}  // namespace vantric_soak
