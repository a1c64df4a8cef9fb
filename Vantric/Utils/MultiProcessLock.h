/// \class com_qel::Orvane::Vantric::ClientServer::MultiProcessLock
/// Mutual exclusion between processes, over a POSIX named semaphore (1 is free, 0 is held).
///
/// The lock never times out and never reports a failure. It is not recursive. The semaphore
/// outlives every process and is never removed. A wait that a signal interrupts returns as if the
/// lock were held: the caller then enters the critical section together with the holder, and its
/// unlock() leaves the value one too high. Install handlers with SA_RESTART, or block signals, in
/// every thread that uses a lock. Construction releases the semaphore, whichever process holds it:
/// that repairs a lock left by a process that died, and it also breaks into the critical section of
/// a live one. The value rises above 1, and the lock then admits several at once, when a
/// construction releases a lock whose holder lives and later unlocks, when two constructions
/// overlap, and after an interrupted wait. Nothing brings it back reliably: it falls by one only
/// when a process dies inside its critical section. Stop all processes and remove the semaphore.
/// Ownership: each object has its own handle on the semaphore and closes it when destroyed. Thread-
/// and process-safety: any thread of any process may use any lock of the same name; they must agree
/// on word size and C library, which define the bytes of a semaphore.
#pragma once

#include <memory>
#include <string>

#include "CoreMisc/Export.h"

namespace com_qel::Orvane::Vantric::ClientServer {

class VANTRIC_EXPORT MultiProcessLock {
  public:
    /// Opens the semaphore `name` (passed on verbatim), creating it free and with mode 0666 less
    /// the umask. One that cannot be opened is logged, and lock() and unlock() then do nothing.
    explicit MultiProcessLock(const std::string& name);

    /// Leaves the semaphore as it is, held or free.
    ~MultiProcessLock();

    MultiProcessLock(const MultiProcessLock&) = delete;
    MultiProcessLock& operator=(const MultiProcessLock&) = delete;

    /// Blocks until the semaphore is free or a signal interrupts the wait, without a time limit.
    void lock();

    /// Posts the semaphore, whichever process holds it.
    void unlock();

  private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace com_qel::Orvane::Vantric::ClientServer
