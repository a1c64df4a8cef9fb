/// \class com_qel::utils::Mutex
/// A POSIX mutex (normal, non-recursive, private to the process) that reports failures through the
/// log and turns POSIX results into a small result code.
///
/// As thread-safe as the POSIX mutex it wraps. Nothing throws. Failures are Error records; every
/// operation also writes a trace record when the trace mask has category 2.
#pragma once

#include <pthread.h>

#include "CoreMisc/Export.h"

namespace com_qel::utils {

class VANTRIC_EXPORT Mutex {
  public:
    /// Results of Lock() and Unlock() other than 0, success.
    enum : int {
        ERR_BUSY = 1,    ///< Lock() only: the system said EBUSY
        ERR_UNKNOWN = 2  ///< any other failure
    };

    /// A free mutex. A failed initialisation is logged only.
    Mutex();

    /// Destroys the mutex. One that cannot be destroyed (it is held) is logged only.
    virtual ~Mutex();

    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    /// Blocks until the mutex is held: 0, ERR_BUSY for EBUSY, ERR_UNKNOWN for any other failure.
    int Lock();

    /// Releases the mutex: 0, or ERR_UNKNOWN for any failure, EBUSY included.
    int Unlock();

  private:
    /// Usable even when the system refuses to initialise it.
    pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
};

}  // namespace com_qel::utils
