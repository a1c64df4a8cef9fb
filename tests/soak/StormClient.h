// A client for the kill storm, which keeps account of what it does to each lock in memory that
// outlives it.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

#include "tests/soak/ExchangeNames.h"

namespace vantric_soak {

// Where a client is with one lock.
enum class LockPhase : uint8_t {
    Idle,
    Checking,     // in a construction, before or in the attempt to take the semaphore
    CheckTook,    // in a construction, the semaphore taken, not posted yet
    CheckFailed,  // in a construction, the semaphore found at 0, not posted yet
    Waiting,      // before or in the wait for the lock
    Holding,
    Releasing,  // the critical section is complete; before or in the post
};

// All that is known about one lock; stored at once, so a death leaves it consistent.
struct LockAccount {
    int32_t attached = 0;  // critical sections that attached, less those that detached
    int16_t balance = 0;   // posts less takes
    LockPhase phase = LockPhase::Idle;
    uint8_t breakIns = 0;  // constructions that found the semaphore at 0, modulo 256
};

struct ClientAccount {
    std::array<std::atomic<LockAccount>, lockCount> locks;
    std::atomic<int32_t> step{0};  // what the critical sections of now add to the attach counts
    std::atomic<uint32_t> cycles{0};
    std::atomic<bool> isRunning{false};

    void beginAttaching() { step = 1; }
    void beginExchanging() { step = 0; }
    void beginDetaching() { step = -1; }
};

// Connects, queries, sends and lets go, over and over, until it is killed; kills itself at its
// `lastStep`-th step with a semaphore (there are two or three for each call), 0 for never.
void runStormClient(ClientAccount& account, const ExchangeSemaphores& semaphores,
                    uint32_t lastStep);

// How many steps two cycles take.
constexpr uint32_t stepsOfTwoCycles = 252;

}  // namespace vantric_soak
