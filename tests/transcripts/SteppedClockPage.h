// What the programs on a stepped clock share (see SteppedClock.h): the time, and whose turn it is.
//
// Exactly one participant runs at any time. It gives up its turn by waiting for a moment to come
// and hands the turn on as it does so; so nothing here needs a lock.
#pragma once

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <ctime>

namespace vantric_test {

// The variables that tell a program where the page is and who it is.
constexpr const char* steppedClockFile = "STEPPED_CLOCK_FILE";
constexpr const char* steppedClockParticipant = "STEPPED_CLOCK_PARTICIPANT";

// In the order of precedence for those that wait for the same moment.
enum ClockParticipant { clockServer, clockClient, clockDirector, clockParticipantCount };

enum TurnState : uint32_t { turnAbsent, turnWaiting, turnRunning };

struct SteppedClockPage {
    struct Participant {
        std::atomic<uint32_t> state;
        int64_t wakeTime;
    };

    int64_t now;                // nanoseconds since the start
    int64_t wallClockStep;      // nanoseconds by which the wall clock was set forwards
    int64_t clientUnlockPause;  // nanoseconds that pass whenever the client frees a lock
    Participant participants[clockParticipantCount];

    void giveTurn(Participant& participant) {
        participant.state = turnRunning;
        syscall(SYS_futex, &participant.state, FUTEX_WAKE, 1, nullptr, nullptr, 0);
    }

    // Gives the turn to the one that wakes first and lets time jump there. At least one participant
    // must wait.
    void passTurnOn() {
        Participant* next = nullptr;
        for (Participant& candidate : participants) {
            const bool isCandidate = candidate.state == turnWaiting;
            if (isCandidate && (next == nullptr || candidate.wakeTime < next->wakeTime)) {
                next = &candidate;
            }
        }
        now = std::max(now, next->wakeTime);
        giveTurn(*next);
    }

    // May return early; `limit` may be null.
    static void awaitTurn(Participant& participant, const timespec* limit) {
        syscall(SYS_futex, &participant.state, FUTEX_WAIT, turnWaiting, limit, nullptr, 0);
    }
};

static_assert(std::atomic<uint32_t>::is_always_lock_free);

}  // namespace vantric_test
