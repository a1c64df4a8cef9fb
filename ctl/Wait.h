// Waiting that a time limit and signals end, for the server or for input. The process has one wait
// at a time; nothing here is safe from several threads.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "Vantric/Utils/Waiting.h"

namespace vantricctl {

// From now on SIGINT and SIGTERM are noted, and SIGPIPE is ignored. A command that a foreign lock
// blocks cannot look at the note, so the process ends two seconds after the signal in any case.
void catchSignals();

// Throws Interrupted when SIGINT or SIGTERM has arrived.
void checkSignals();

// The first line of standard input; on a terminal after a prompt, without echo. Throws Interrupted.
std::string readSecret(const char* prompt);

// While it lives, the process ends with statusTimeOver and a sentence on standard error once a
// foreign lock has blocked it for `seconds`.
class BlockingLimit {
  public:
    explicit BlockingLimit(unsigned int seconds);
    ~BlockingLimit();

    BlockingLimit(const BlockingLimit&) = delete;
    BlockingLimit& operator=(const BlockingLimit&) = delete;
};

class Wait {
  public:
    enum class Countdown { OnTerminal, None };

    // Starts the time.
    explicit Wait(uint32_t timeoutSeconds, Countdown countdown = Countdown::OnTerminal);
    ~Wait();

    Wait(const Wait&) = delete;
    Wait& operator=(const Wait&) = delete;

    // Sleeps for a poll interval. False, without sleeping, when the time is over. Throws
    // Interrupted.
    bool next();

    // Stops the time and removes the countdown.
    void finish();

    // How long it has taken.
    double seconds() const;

  private:
    void showCountdown();
    void clearCountdown();

    const uint32_t timeoutSeconds_;
    const bool hasCountdown_;
    int64_t shownSeconds_ = -1;
    std::optional<double> finalSeconds_;
    const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    const com_qel::Orvane::Vantric::Deadline deadline_;
};

}  // namespace vantricctl
