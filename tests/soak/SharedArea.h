// One object in memory that a process shares with the processes it forks from then on.
#pragma once

#include <sys/mman.h>

#include <new>
#include <system_error>
#include <type_traits>

namespace vantric_soak {

template <class T>
class SharedArea {
    static_assert(std::is_trivially_destructible_v<T>, "several processes let go of it");

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

    SharedArea(const SharedArea&) = delete;
    SharedArea& operator=(const SharedArea&) = delete;

    T& operator*() const { return *object_; }
    T* operator->() const { return object_; }

  private:
    T* object_ = nullptr;
};

}  // namespace vantric_soak
