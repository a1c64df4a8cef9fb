// What keeps a client from its server for a while.
#pragma once

#include <chrono>
#include <functional>

#include "tests/support/ChildProcess.h"
#include "tests/transcripts/SteppedClock.h"

namespace vantric_test {

struct Hindrance {
    const char* description = nullptr;  // null for none
    // The client must start without the right to open other users' files.
    bool needsObedientClient = false;
    std::chrono::milliseconds raisedAt = 0ms;
    std::chrono::milliseconds liftedAt = 0ms;
    std::function<void(const ChildProcess& client, SteppedClock& clock)> raise;
    std::function<void(const ChildProcess& client, SteppedClock& clock)> lift;  // null for never
};

Hindrance noHindrance();

// The objects exist and belong to another user.
Hindrance foreignObjects();

// The same for longer than any limit.
Hindrance foreignObjectsForLong();

// The client may open nothing more.
Hindrance noDescriptors();

// Nothing can be created any more; there must be no server.
Hindrance fullSharedMemory();

// Another process holds the lock of the command channel. The client must be connected when that
// begins, for connecting frees the lock; the server must not take frames out.
Hindrance heldCommandChannel();

// The client gets no more memory for a while.
Hindrance noMemory();

// The wall clock is set by ten minutes just before second 2.
Hindrance wallClockSetForwards();
Hindrance wallClockSetBackwards();

// The client loses its processor for 300ms whenever it frees a lock, so that time passes between
// any two accesses to a segment.
Hindrance slowLocks();

}  // namespace vantric_test
