// The rhythm in which the blocking operations look for the server's answer.
#pragma once

#include <chrono>
#include <thread>

namespace com_qel::Orvane::Vantric {

// Sleeps 50 ms; a signal does not shorten it.
inline void sleepForPollInterval() {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
}

}  // namespace com_qel::Orvane::Vantric
