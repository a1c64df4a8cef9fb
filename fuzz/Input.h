// Takes one fuzz input apart, front to back. An input that has ended yields zeros and empty runs.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "tests/support/RawSegment.h"

namespace vantric_fuzz {

using vantric_test::Bytes;

class Input {
  public:
    Input(const uint8_t* data, std::size_t size) : position_(data), end_(data + size) {}

    bool isEmpty() const { return position_ == end_; }

    uint8_t byte() { return isEmpty() ? uint8_t{0} : *position_++; }

    // Least significant byte first, as everywhere below.
    uint16_t half() {
        const unsigned int low = byte();
        return static_cast<uint16_t>(low | static_cast<unsigned int>(byte()) << 8U);
    }

    uint32_t word() {
        const uint32_t low = half();
        return low | uint32_t{half()} << 16U;
    }

    uint64_t longWord() {
        const uint64_t low = word();
        return low | uint64_t{word()} << 32U;
    }

    // As many of `count` bytes as are left.
    Bytes bytes(std::size_t count) {
        const uint8_t* begin = position_;
        position_ += std::min(count, static_cast<std::size_t>(end_ - position_));
        return Bytes(begin, position_);
    }

    // One byte with a length, then so many bytes.
    Bytes run() { return bytes(byte()); }

    std::string text() {
        const Bytes content = run();
        return std::string(content.begin(), content.end());
    }

  private:
    const uint8_t* position_;
    const uint8_t* end_;
};

}  // namespace vantric_fuzz
