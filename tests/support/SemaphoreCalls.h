// Watches this process's calls on semaphores, from inside the calls.
//
// A binary that lists SemaphoreCalls.cpp among its own sources (it must not come out of an archive,
// where it would join binaries that never asked for it) has its semaphore functions stand before
// the system's. An action at a moment runs in the calling thread: it can look at shared memory in
// the very hold of a lock that the code under test has taken, let others run in between, or die.
#pragma once

#include <semaphore.h>

#include <functional>

namespace vantric_test {

enum class SemaphoreMoment {
    AboutToWait,  // sem_wait is about to be called
    AboutToTry,   // sem_timedwait is about to be called
    Taken,        // either has taken the semaphore
    NotTaken,     // either has failed
    AboutToPost,
    Posted,
};

using SemaphoreObserver = std::function<void(SemaphoreMoment moment, const sem_t* semaphore)>;

// Calls `observer` at every moment from now on; nullptr ends that. For one thread: the observer is
// called by every user of a semaphore. Inherited by fork().
void observeSemaphoreCalls(SemaphoreObserver observer);

}  // namespace vantric_test
