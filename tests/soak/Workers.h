// Processes that work against each other for a while, and the memory that they share.
#pragma once

#include <sys/mman.h>
#include <sys/types.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <new>
#include <string>
#include <system_error>
#include <type_traits>
#include <vector>

namespace vantric_soak {

// How long a case works: the environment's VANTRIC_SOAK_SECONDS, or one second.
std::chrono::seconds workingTime();

// Ends the calling worker as failed, with `text` on standard error, unless `holds`.
void require(bool holds, const std::string& text);

// Well-mixed bits that follow from `key` alone, so that the receiver can compute them again.
constexpr uint32_t mixed(uint32_t key) {
    key = (key ^ (key >> 16U)) * 0x7FEB352DU;
    key = (key ^ (key >> 15U)) * 0x846CA68BU;
    return key ^ (key >> 16U);
}

// One object in memory that a process shares with the processes it forks from then on.
template <class T>
class SharedArea {
    static_assert(std::is_trivially_destructible_v<T>, "each process drops its own mapping");

  public:
    SharedArea() {
        void* address =
            mmap(nullptr, sizeof(T), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (address == MAP_FAILED) {
            throw std::system_error(errno, std::generic_category(), "mapping shared memory");
        }
        object_ = new (address) T();
    }

    ~SharedArea() { munmap(object_, sizeof(T)); }
    SharedArea& operator=(SharedArea&&) = delete;

    T& operator*() const { return *object_; }
    T* operator->() const { return object_; }

  private:
    T* object_ = nullptr;
};

// Forks a process that runs `task`, ends with success when it returns, and dies with its parent.
// Throws std::system_error.
pid_t startProcess(const std::function<void()>& task);

class Workers {
  public:
    // Kills the workers that are left.
    ~Workers();
    Workers& operator=(Workers&&) = delete;

    // Starts a worker and returns when it has attached: objects are opened one after the other,
    // because opening a lock releases it.
    void start(const std::function<void()>& task);

    // For workers: tells that everything is attached and waits until all are; whether to go on.
    void attached();
    bool goesOn() const { return !signals_->isOver; }

    // Lets the workers work for workingTime() and until `isEnough`. Whether all of them ended with
    // success, in bounded time.
    bool work(const std::function<bool()>& isEnough);

  private:
    struct Signals {
        std::atomic<uint32_t> attached{0};
        std::atomic<bool> hasStarted{false};
        std::atomic<bool> isOver{false};
    };

    // Collects those that have ended; false as soon as one has failed.
    bool collect();

    SharedArea<Signals> signals_;
    std::vector<pid_t> running_;
    uint32_t started_ = 0;
    bool hasFailed_ = false;
};

}  // namespace vantric_soak
