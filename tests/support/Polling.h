// Waiting for a condition, with a bound instead of a hopeful sleep.
#pragma once

#include <chrono>
#include <thread>

namespace vantric_test {

// Evaluates `condition` every few milliseconds until it holds or `patience` is over; the result is
// its last value.
template <class Condition>
bool eventually(Condition condition,
                std::chrono::milliseconds patience = std::chrono::seconds(60)) {
    constexpr std::chrono::milliseconds interval(2);
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(interval);
    }
    return true;
}

}  // namespace vantric_test
