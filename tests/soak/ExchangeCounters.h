// All that the exchange counts in shared memory, at one moment.
#pragma once

#include <array>
#include <cstdint>

#include "tests/soak/ExchangeNames.h"
#include "tests/support/RawSegment.h"

namespace vantric_soak {

struct ExchangeCounters {
    std::array<int64_t, objectCount> attached = {};
    int64_t producers = 0;
    int64_t consumers = 0;
    std::array<int, lockCount> semaphores = {};

    ExchangeCounters() = default;

    explicit ExchangeCounters(const ExchangeSemaphores& open) : semaphores(open.values()) {
        for (std::size_t object = 0; object < objectCount; ++object) {
            attached.at(object) = vantric_test::RawSegment(objectNames.at(object)).word(0);
        }
        const vantric_test::RawSegment ring(objectNames.at(commandsObject));
        producers = ring.word(8);
        consumers = ring.word(12);
    }
};

}  // namespace vantric_soak
