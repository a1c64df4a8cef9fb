// One writer at full speed against readers of the three state segments: no copy is torn, and no
// reader sees time go back.
#pragma once

#include <cstdint>

#include "tests/soak/Supervision.h"

namespace vantric_soak {

struct TornReadHuntSize {
    uint64_t reads = 10'000'000;  // of all readers
    uint32_t readers = 4;
};

// Prints a summary; throws HuntFailure when a property does not hold.
void huntTornReads(const TornReadHuntSize& size, uint64_t seed, Supervision& supervision);

}  // namespace vantric_soak
