// One row of the results: an operation beside the same work by hand and beside other ways of doing
// it. Each is a benchmark named ROW/ROLE/WHAT; all of one program run interleaved.
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>

namespace vantric_bench {

constexpr const char* floorRole = "floor";      // the same work by hand
constexpr const char* productRole = "product";  // ours
constexpr const char* peerRole = "peer";        // another way

// Every program's rows; its main() calls this once.
void registerRows();

struct Batch {
    int size;       // operations that are timed together
    int delivered;  // that arrived, by the count of whoever received them
};

// Adds a benchmark. `setUp()` gives what one run of it needs, with a stop() that throws when
// something went wrong besides; `timedBatch(state, thing)` runs one iteration and says what it did.
template <class SetUp, class TimedBatch>
void addContendedMeasurement(const std::string& row, const char* role, const std::string& what,
                             SetUp setUp, TimedBatch timedBatch) {
    const std::string name = row + '/' + role + '/' + what;
    auto run = [=](benchmark::State& state) mutable {
        const auto others = setUp();
        double delivered = 0;
        int batchSize = 1;
        for ([[maybe_unused]] auto iteration : state) {
            const Batch batch = timedBatch(state, *others);
            if (batch.delivered != batch.size) {
                throw std::runtime_error(name + ": an operation failed or its frame was lost");
            }
            batchSize = batch.size;
            delivered += batch.delivered;
        }
        others->stop();
        state.counters["batch"] = batchSize;
        state.counters["delivered"] = delivered;
    };
    benchmark::RegisterBenchmark(name.c_str(), run)->UseManualTime();
}

// For work without others.
struct Nobody {
    void stop() {}
};

template <class TimedBatch>
void addMeasurement(const std::string& row, const char* role, const std::string& what,
                    TimedBatch timedBatch) {
    addContendedMeasurement(
        row, role, what, [] { return std::make_unique<Nobody>(); },
        [=](benchmark::State& state, Nobody&) mutable { return timedBatch(state); });
}

// Times `size` calls of `operation` together; the number of successes.
template <class Operation>
int timeTogether(benchmark::State& state, int size, Operation& operation) {
    using Clock = std::chrono::steady_clock;
    int succeeded = 0;
    const auto start = Clock::now();
    for (int index = 0; index < size; ++index) {
        succeeded += operation() ? 1 : 0;
    }
    state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
    return succeeded;
}

// A measurement whose operations succeed or fail by themselves.
template <class Operation>
void addOperation(const std::string& row, const char* role, const std::string& what,
                  Operation operation) {
    constexpr int size = 32;
    addMeasurement(row, role, what, [operation](benchmark::State& state) mutable {
        return Batch{size, timeTogether(state, size, operation)};
    });
}

// A measurement of sending: `takeAll`, outside the timed part, returns the number of frames that
// arrived intact. An empty batch would prove nothing.
template <class Send, class TakeAll>
void addSending(const std::string& row, const char* role, const std::string& what, int size,
                Send send, TakeAll takeAll) {
    addMeasurement(row, role, what, [=](benchmark::State& state) mutable {
        timeTogether(state, size, send);
        return Batch{size, takeAll()};
    });
}

}  // namespace vantric_bench
