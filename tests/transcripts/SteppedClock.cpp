#include "tests/transcripts/SteppedClock.h"

#include <fcntl.h>
#include <sys/mman.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "tests/support/Polling.h"

namespace vantric_test {

namespace {

// In real time.
constexpr std::chrono::seconds turnPatience(60);
constexpr timespec observationInterval = {0, 1'000'000};

SteppedClockPage* mapPage(const std::string& path) {
    const int descriptor = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    const bool isSized = ftruncate(descriptor, sizeof(SteppedClockPage)) == 0;
    void* address =
        mmap(nullptr, sizeof(SteppedClockPage), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    close(descriptor);
    if (!isSized || address == MAP_FAILED) {
        throw std::runtime_error("cannot map the clock");
    }
    return static_cast<SteppedClockPage*>(address);
}

}  // namespace

SteppedClock::SteppedClock(std::function<void()> observe)
    : observe_(std::move(observe)), path_(folder_ / "clock"), page_(mapPage(path_)) {
    page_->participants[clockDirector].state = turnRunning;
}

SteppedClock::~SteppedClock() {
    munmap(page_, sizeof(*page_));
}

Command SteppedClock::with(Command command, ClockParticipant participant) const {
    command.environment["LD_PRELOAD"] = STEPPED_CLOCK_PRELOAD;
    command.environment[steppedClockFile] = path_;
    command.environment[steppedClockParticipant] = std::to_string(participant);
    command.environment["TZ"] = "UTC";
    return command;
}

void SteppedClock::admit(ChildProcess& program, ClockParticipant participant) {
    const auto& state = page_->participants[participant].state;
    eventually([&] { return state == turnWaiting || program.wait(0ms); }, turnPatience);
    if (state != turnWaiting) {
        throw std::runtime_error("a program does not start: " + program.errors());
    }
    programs_[participant] = &program;
}

void SteppedClock::dismiss(ClockParticipant participant) {
    programs_[participant] = nullptr;
    page_->participants[participant].state = turnAbsent;
}

// Whether a program was found that has ended. Its turn, if it had it, is ours then.
bool SteppedClock::removeEnded() {
    for (const ClockParticipant participant : {clockServer, clockClient}) {
        if (programs_[participant] != nullptr && programs_[participant]->wait(0ms)) {
            if (page_->participants[participant].state == turnRunning) {
                page_->participants[clockDirector].state = turnRunning;
            }
            dismiss(participant);
            return true;
        }
    }
    return false;
}

// False when a program ended in its turn.
bool SteppedClock::awaitOwnTurn() {
    SteppedClockPage::Participant& own = page_->participants[clockDirector];
    const auto deadline = std::chrono::steady_clock::now() + turnPatience;
    bool hasEnded = false;
    while (own.state == turnWaiting) {
        observe_();
        SteppedClockPage::awaitTurn(own, &observationInterval);
        hasEnded = own.state == turnWaiting && removeEnded();
        if (std::chrono::steady_clock::now() > deadline) {
            throw std::runtime_error("a program neither sleeps nor ends");
        }
    }
    observe_();
    return !hasEnded;
}

bool SteppedClock::isAnyProgramDue() const {
    const auto isDue = [&](const SteppedClockPage::Participant& participant) {
        return participant.state == turnWaiting && participant.wakeTime <= page_->now;
    };
    return std::any_of(std::begin(page_->participants), std::end(page_->participants), isDue);
}

bool SteppedClock::runUntil(std::chrono::nanoseconds time) {
    SteppedClockPage::Participant& own = page_->participants[clockDirector];
    do {
        own.wakeTime = time.count();
        own.state = turnWaiting;
        page_->passTurnOn();
        if (!awaitOwnTurn()) {
            return false;
        }
    } while (now() < time || isAnyProgramDue());
    return true;
}

}  // namespace vantric_test
