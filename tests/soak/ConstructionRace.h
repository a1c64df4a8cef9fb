// Processes that construct locks of one name at the same time. Each may find the semaphore taken by
// another one's check and post all the same, so the value can rise; yet never above the number of
// processes: a post adds to the value only when its check failed, which takes a semaphore of which
// all units are in the hands of the others.
#pragma once

#include <cstdint>

#include "tests/soak/Supervision.h"

namespace vantric_soak {

struct ConstructionRaceSize {
    uint64_t rounds = 100'000;
    uint32_t processes = 8;
};

// Prints a summary; throws HuntFailure when a property does not hold.
void huntConstructionRaces(const ConstructionRaceSize& size, uint64_t seed,
                           Supervision& supervision);

}  // namespace vantric_soak
