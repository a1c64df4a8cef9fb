// Lets the blocking operations wait without waiting.
//
// Linking this file puts it before the system's clock and sleep; outside the life of an object they
// are the system's.
#pragma once

#include <cstdint>
#include <functional>

namespace vantric_fuzz {

class SimulatedTime {
  public:
    // While the object lives the wall clock stands still, each look at the steady clock takes 20
    // milliseconds, and a sleep takes its time on the steady clock only and calls `duringSleep`.
    // Whoever looks or sleeps without end breaks a promise. One object at a time, one thread.
    explicit SimulatedTime(std::function<void()> duringSleep);
    ~SimulatedTime();

    SimulatedTime(const SimulatedTime&) = delete;
    SimulatedTime& operator=(const SimulatedTime&) = delete;

    // What the wall clock shows.
    int64_t wallSeconds() const;
};

}  // namespace vantric_fuzz
