// Watches the POSIX mutex calls on one object, and can make them fail.
#pragma once

#include <pthread.h>

#include <cstddef>

namespace vantric_test {

enum class MutexCall { initialise, destroy, lock, unlock };

// While it lives, every call of this kind on a mutex inside the given memory returns `result`. A
// failing lock or unlock does nothing; a failing initialisation or destruction is done all the
// same, so the mutex can go on being used. With result 0 the calls do their work and are counted.
// One at a time.
class MutexFault {
  public:
    MutexFault(MutexCall call, int result, const void* memory, std::size_t size);
    ~MutexFault();

    MutexFault(const MutexFault&) = delete;
    MutexFault& operator=(const MutexFault&) = delete;

    int calls() const;
    // Whether the last initialisation came with attributes.
    bool hadAttributes() const;
};

}  // namespace vantric_test
