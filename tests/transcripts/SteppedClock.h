// A clock that stands still while a program computes and jumps ahead when all of them sleep.
//
// The client, the server and the test itself, which directs them, take turns: only one runs at any
// time, and always the one whose sleep ends first. So a run is the same each time and on every
// machine, down to the millisecond, and minutes of waiting cost next to nothing.
#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/transcripts/SteppedClockPage.h"

namespace vantric_test {

class SteppedClock {
  public:
    // `observe` is called at every pause of the client, and now and then while a program runs.
    explicit SteppedClock(std::function<void()> observe);
    ~SteppedClock();
    SteppedClock& operator=(SteppedClock&&) = delete;

    // `command` as a program on this clock.
    Command with(Command command, ClockParticipant participant) const;

    // Waits until a program that was just started stands before its first instruction; it goes on
    // with the next runUntil(). `program` must outlive its end or the clock.
    void admit(ChildProcess& program, ClockParticipant participant);

    // Since the start of the clock.
    std::chrono::nanoseconds now() const { return std::chrono::nanoseconds(page_->now); }

    // Lets the programs run up to and including the moment `time`, or until one of them ends: false
    // then. Throws std::runtime_error when one neither sleeps nor ends.
    bool runUntil(std::chrono::nanoseconds time);

    // Sets the programs' wall clock forwards, or backwards; all else goes on undisturbed.
    void setWallClock(std::chrono::nanoseconds step) { page_->wallClockStep = step.count(); }

    // From now on the client loses this time whenever it frees a lock.
    void pauseAtUnlock(std::chrono::nanoseconds pause) { page_->clientUnlockPause = pause.count(); }

    // Takes a program out that has ended while the clock stood.
    void dismiss(ClockParticipant participant);

  private:
    bool removeEnded();
    bool awaitOwnTurn();
    bool isAnyProgramDue() const;

    const std::function<void()> observe_;
    TemporaryFolder folder_;
    std::string path_;
    SteppedClockPage* page_;
    ChildProcess* programs_[clockDirector] = {};
};

}  // namespace vantric_test
