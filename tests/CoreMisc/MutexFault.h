// Makes the POSIX mutex calls on one object fail.
#pragma once

#include <pthread.h>

#include <cstddef>

namespace vantric_test {

enum class MutexCall { initialise, destroy, lock, unlock };

// While it lives, every call of this kind on a mutex inside the given memory returns `result`, an
// error. A lock or unlock does nothing; an initialisation or destruction is done all the same, so
// the mutex can go on being used. One at a time.
class MutexFault {
  public:
    MutexFault(MutexCall call, int result, const void* memory, std::size_t size);
    ~MutexFault();
    MutexFault& operator=(MutexFault&&) = delete;

    // Whether the last initialisation came with attributes.
    bool hadAttributes() const;
};

}  // namespace vantric_test
