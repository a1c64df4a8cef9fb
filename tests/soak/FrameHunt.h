// Producers and one consumer at the command ring: every frame that was written arrives once, intact
// and in its producer's order, and a frame is dropped exactly when the ring has no room for it.
#pragma once

#include <cstdint>

#include "tests/soak/Supervision.h"

namespace vantric_soak {

struct FrameHuntSize {
    uint64_t frames = 2'000'000;  // to be delivered
    uint32_t producers = 8;
};

// Prints a summary; throws HuntFailure when a property does not hold.
void huntFrames(const FrameHuntSize& size, uint64_t seed, Supervision& supervision);

}  // namespace vantric_soak
