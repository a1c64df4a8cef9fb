// Repeats an operation inside a function of its own, so that an instruction counter can be switched
// on for that function alone.
#pragma once

#include <stdexcept>

namespace vantric_bench {

constexpr int batchSize = 32;  // frames of the largest operation that the ring holds

// The name is what scripts/perf-check.sh counts in. The number of successes.
template <class Operation>
[[gnu::noinline]] int measuredSection(Operation& operation) {
    int succeeded = 0;
    for (int index = 0; index < batchSize; ++index) {
        succeeded += operation() ? 1 : 0;
    }
    return succeeded;
}

// Calls `operation` at least `count` times, and `afterwards` behind every batch. Throws
// std::runtime_error when an operation fails.
template <class Operation, class Afterwards>
void repeat(long count, Operation operation, Afterwards afterwards) {
    for (long done = 0; done < count; done += batchSize) {
        if (measuredSection(operation) != batchSize) {
            throw std::runtime_error("an operation failed");
        }
        afterwards();
    }
}

}  // namespace vantric_bench
