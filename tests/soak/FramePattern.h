// What the frames of the frame hunt look like: everything follows from producer, sequence number
// and seed.
#pragma once

#include <cstdint>
#include <vector>

#include "tests/soak/Randomness.h"

namespace vantric_soak {

constexpr uint32_t ringCapacity = 4096;
constexpr uint32_t frameHeaderSize = 8;
constexpr uint32_t largestPayload = ringCapacity - frameHeaderSize;

// What the consumer offers. A larger payload is refused, and its bytes are then read as headers;
// such payloads therefore consist of headers of empty frames, which can be recognised.
constexpr uint32_t consumerBufferSize = 3000;

struct FrameName {
    uint32_t producer = 0;  // 0 to 7
    uint32_t sequence = 0;  // below 2^28
    bool isNested = false;  // a header inside a payload

    friend bool operator==(const FrameName& left, const FrameName& right) {
        return left.producer == right.producer && left.sequence == right.sequence &&
               left.isNested == right.isNested;
    }
};

class FramePattern {
  public:
    static constexpr uint32_t mostProducers = 8;
    static constexpr uint32_t mostFrames = 1U << 28U;

    explicit FramePattern(uint64_t seed)
        : seed_(seed), mask_(static_cast<uint32_t>(Randomness(seed).next())) {}

    uint32_t command(const FrameName& name) const {
        const uint32_t nestedBit = name.isNested ? 1U : 0U;
        return (nestedBit << 31U | name.producer << 28U | name.sequence) ^ mask_;
    }

    FrameName name(uint32_t command) const {
        const uint32_t plain = command ^ mask_;
        return {(plain >> 28U) & 7U, plain & (mostFrames - 1), (plain >> 31U) != 0};
    }

    // Mostly small; now and then the extremes.
    uint32_t payloadSize(const FrameName& name) const {
        Randomness randomness(keyOf(name));
        const uint32_t choice = randomness.below(100);
        if (choice < 8) {
            return 0;
        }
        if (choice < 60) {
            return randomness.between(1, 32);
        }
        if (choice < 85) {
            return randomness.between(33, 256);
        }
        if (choice < 97) {
            return randomness.between(257, 1500);
        }
        if (choice < 98) {
            return randomness.between(1501, consumerBufferSize);
        }
        return choice < 99 ? randomness.between(consumerBufferSize / 8 + 1, largestPayload / 8) * 8
                           : largestPayload;
    }

    static bool isRefused(uint32_t payloadSize) { return payloadSize > consumerBufferSize; }

    // Sets `payload` to the frame's payload.
    void fillPayload(const FrameName& name, std::vector<unsigned char>& payload) const {
        payload.resize(payloadSize(name));
        if (!isRefused(static_cast<uint32_t>(payload.size()))) {
            fillPattern(payload.data(), payload.size(), mixed(keyOf(name), 1));
            return;
        }
        const uint32_t header[] = {command({name.producer, name.sequence, true}), 0};
        for (std::size_t offset = 0; offset < payload.size(); offset += sizeof(header)) {
            std::memcpy(payload.data() + offset, header, sizeof(header));
        }
    }

  private:
    uint64_t keyOf(const FrameName& name) const {
        return mixed(seed_, uint64_t{name.producer} << 32U | name.sequence);
    }

    uint64_t seed_;
    uint32_t mask_;
};

}  // namespace vantric_soak
