// The command ring's object, byte by byte, built by hand.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "tests/support/RawSegment.h"

namespace vantric_test {

constexpr const char* ringName = "ModemCommandsShm";
constexpr const char* ringLockName = "ModemCommandsShmLock";
constexpr uint32_t ringCapacity = 4096;

struct RingImage {
    uint32_t attached = 1;
    uint32_t initialized = 1;
    uint32_t producers = 1;
    uint32_t consumers = 0;
    uint32_t readIndex = 0;
    uint32_t writeIndex = 0;
    uint32_t capacity = ringCapacity;
    unsigned char full = 0;
    unsigned char empty = 1;
    Bytes data = Bytes(ringCapacity, 0);

    // The whole object.
    Bytes bytes() const {
        Bytes image;
        for (const uint32_t word :
             {attached, initialized, producers, consumers, readIndex, writeIndex, capacity}) {
            appendWord(image, word);
        }
        image.push_back(full);
        image.push_back(empty);
        image.insert(image.end(), data.begin(), data.end());
        image.insert(image.end(), {0, 0});
        return image;
    }

    // Lays bytes into the data from `offset` on, going on at the start where it ends.
    void put(std::size_t offset, const Bytes& run) {
        for (const unsigned char byte : run) {
            data[offset++ % data.size()] = byte;
        }
    }
};

inline testing::AssertionResult holds(const RawSegment& segment, const RingImage& expected) {
    const std::string difference = firstDifference(segment.bytes(), expected.bytes());
    return difference.empty() ? testing::AssertionSuccess()
                              : testing::AssertionFailure() << difference;
}

inline Bytes frame(uint32_t command, const Bytes& payload = {}) {
    Bytes bytes;
    appendWord(bytes, command);
    appendWord(bytes, static_cast<uint32_t>(payload.size()));
    bytes.insert(bytes.end(), payload.begin(), payload.end());
    return bytes;
}

// Bytes that differ from each other as far as they can.
inline Bytes pattern(std::size_t size) {
    Bytes bytes;
    for (std::size_t index = 0; index < size; ++index) {
        bytes.push_back(static_cast<unsigned char>(index % 251 + 1));
    }
    return bytes;
}

}  // namespace vantric_test
