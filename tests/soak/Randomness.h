// Numbers and bytes that follow from a key alone, so that whoever knows the key can check them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vantric_soak {

// A sequence of well-mixed numbers (the SplitMix64 generator).
class Randomness {
  public:
    explicit Randomness(uint64_t key) : state_(key) {}

    uint64_t next() {
        state_ += 0x9E3779B97F4A7C15U;
        uint64_t value = state_;
        value = (value ^ (value >> 30U)) * 0xBF58476D1CE4E5B9U;
        value = (value ^ (value >> 27U)) * 0x94D049BB133111EBU;
        return value ^ (value >> 31U);
    }

    // 0 to limit - 1.
    uint32_t below(uint32_t limit) { return static_cast<uint32_t>(next() % limit); }

    // first to last, both included.
    uint32_t between(uint32_t first, uint32_t last) { return first + below(last - first + 1); }

  private:
    uint64_t state_;
};

// One key out of two; different pairs give unrelated keys.
inline uint64_t mixed(uint64_t first, uint64_t second) {
    return Randomness(Randomness(first).next() ^ second).next();
}

// Fills `size` bytes with what follows from `key`.
inline void fillPattern(unsigned char* bytes, std::size_t size, uint64_t key) {
    Randomness randomness(key);
    while (size != 0) {
        const uint64_t word = randomness.next();
        const std::size_t count = size < sizeof(word) ? size : sizeof(word);
        std::memcpy(bytes, &word, count);
        bytes += count;
        size -= count;
    }
}

}  // namespace vantric_soak
