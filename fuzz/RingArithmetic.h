// What the command ring's operations do to a ring whose header may hold anything, worked out byte
// by byte on a copy of the object. A header that cannot be true (a capacity beyond the data, an
// index beyond the capacity) makes the ring unusable.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "tests/support/RingModel.h"

namespace vantric_fuzz {

using vantric_test::Bytes;
using vantric_test::RingModel;

class RingArithmetic {
  public:
    static constexpr std::size_t objectSize = 4128;

    // Where the fields stand in the object; words but for the last three.
    static constexpr std::size_t initialized = 4;
    static constexpr std::size_t readIndex = 16;
    static constexpr std::size_t writeIndex = 20;
    static constexpr std::size_t capacity = 24;
    static constexpr std::size_t full = 28;
    static constexpr std::size_t empty = 29;
    static constexpr std::size_t firstData = 30;

    explicit RingArithmetic(Bytes object);

    void enqueue(uint32_t command, const Bytes& payload);

    // As RingModel::dequeue().
    std::optional<RingModel::Frame> dequeue(std::optional<std::size_t> bufferSize);

    void setWord(std::size_t offset, uint32_t word);
    void setByte(std::size_t offset, unsigned char byte) { object_[offset] = byte; }

    const Bytes& object() const { return object_; }

  private:
    uint32_t word(std::size_t offset) const;
    bool isUsable() const;
    std::size_t used() const;
    std::size_t free() const;
    void put(unsigned char byte);
    std::optional<Bytes> take(std::size_t count);

    Bytes object_;
};

}  // namespace vantric_fuzz
