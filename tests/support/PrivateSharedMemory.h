// Gives the calling process a /dev/shm of its own.
//
// Tests create the very object and semaphore names that a live server uses. In a mount namespace of
// its own a test process can neither see nor touch those, and test processes can run side by side.
#pragma once

namespace vantric_test {

// Replaces /dev/shm by an empty one for this process and the children it starts from now on. Call
// before any thread is started. Works as root and, through a user namespace, for everybody else.
// Ends the process with a message and status 3 when the system forbids it: tests must never run
// against the live objects.
void enterPrivateSharedMemory();

}  // namespace vantric_test
