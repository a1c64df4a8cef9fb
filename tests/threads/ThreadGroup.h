// Threads that start together.
#pragma once

#include <atomic>
#include <cstddef>
#include <thread>
#include <vector>

namespace vantric_test {

// Calls action(index) in `count` threads, as close to the same moment as possible, and waits for
// all of them.
template <class Action>
void inThreads(int count, Action action) {
    std::atomic<int> waiting{count};
    std::vector<std::thread> threads;
    threads.reserve(static_cast<std::size_t>(count));
    for (int index = 0; index < count; ++index) {
        threads.emplace_back([&waiting, &action, index] {
            --waiting;
            while (waiting != 0) {
                std::this_thread::yield();
            }
            action(index);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace vantric_test
