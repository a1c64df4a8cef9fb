// Mutual exclusion between processes, over a POSIX named semaphore (1 is free, 0 is held).
//
// The lock never times out and never reports a failure: a wait that a signal interrupts proceeds as
// if the lock were held. It is not recursive. The semaphore outlives every process, and nobody
// removes it.
// Construction releases the semaphore whoever holds it: that repairs a lock left behind by a
// process that died, and it also breaks into the critical section of a live one. Ownership: each
// object has its own handle on the semaphore and closes it when destroyed. Thread- and
// process-safety: any thread of any process may use any lock of the same name.
#pragma once

#include <memory>
#include <string>

namespace com_qel::Orvane::Vantric::ClientServer {

class MultiProcessLock {
  public:
    // Opens the semaphore `name` (passed on verbatim), creating it free and with mode 0666 less the
    // umask. One that cannot be opened is logged, and lock() and unlock() then do nothing.
    explicit MultiProcessLock(const std::string& name);

    // Leaves the semaphore as it is, held or free.
    ~MultiProcessLock();

    MultiProcessLock(const MultiProcessLock&) = delete;
    MultiProcessLock& operator=(const MultiProcessLock&) = delete;

    // Blocks until the semaphore is free, without a time limit.
    void lock();

    // Posts the semaphore, whoever holds it.
    void unlock();

  private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace com_qel::Orvane::Vantric::ClientServer
