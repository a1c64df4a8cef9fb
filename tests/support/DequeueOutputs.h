// What a consumer hands to one dequeue() and finds there afterwards.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "tests/support/RingModel.h"

namespace vantric_test {

struct DequeueOutputs {
    explicit DequeueOutputs(std::size_t capacity)
        : size(static_cast<uint32_t>(capacity)),
          buffer(std::make_unique<unsigned char[]>(capacity)),
          capacity_(capacity) {
        std::fill_n(buffer.get(), capacity, untouchedByte);
    }

    // Whether exactly this frame was handed out, and nothing at all for a failure.
    bool hold(const std::optional<RingModel::Frame>& frame) const {
        const Bytes payload = frame ? frame->payload : Bytes();
        const std::size_t expectedSize = payload.empty() ? capacity_ : payload.size();
        return command == (frame ? frame->command : untouchedCommand) && size == expectedSize &&
               std::equal(payload.begin(), payload.end(), buffer.get()) &&
               std::all_of(buffer.get() + payload.size(), buffer.get() + capacity_,
                           [](unsigned char byte) { return byte == untouchedByte; });
    }

    static constexpr uint32_t untouchedCommand = 0xABCDABCD;
    static constexpr unsigned char untouchedByte = 0xEE;

    uint32_t command = untouchedCommand;
    uint32_t size;
    std::unique_ptr<unsigned char[]> buffer;  // exactly as large, so that sanitizers see an overrun

  private:
    std::size_t capacity_;
};

// `content` over and over until it is `size` bytes long; zeros when it is empty.
inline Bytes repeated(const Bytes& content, std::size_t size) {
    Bytes bytes(size, 0);
    for (std::size_t index = 0; index < size && !content.empty(); ++index) {
        bytes[index] = content[index % content.size()];
    }
    return bytes;
}

}  // namespace vantric_test
