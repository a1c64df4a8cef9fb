/// \file
/// The time limit and the pause of the operations that wait for the server.
///
/// Internal to this tree: the library and vantricctl wait alike. Thread-safety: a Deadline never
/// changes.
#pragma once

#include <chrono>
#include <cstdint>
#include <thread>

namespace com_qel::Orvane::Vantric {

/// The moment of the monotonic clock at which an operation stops waiting.
class Deadline {
  public:
    /// With a timeout of 0 the deadline has passed at once.
    explicit Deadline(uint32_t timeoutSeconds)
        : end_(Clock::now() + std::chrono::seconds(timeoutSeconds)) {}

    /// True from the deadline on.
    bool hasPassed() const { return Clock::now() >= end_; }

  private:
    using Clock = std::chrono::steady_clock;

    Clock::time_point end_;
};

/// Sleeps 50 ms, the pause between two polls; a signal does not shorten it.
inline void sleepForPollInterval() {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
}

}  // namespace com_qel::Orvane::Vantric
