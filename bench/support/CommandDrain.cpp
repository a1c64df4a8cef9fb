#include "bench/support/CommandDrain.h"

#include <cstring>
#include <stdexcept>
#include <utility>

namespace vantric_bench {

void CommandDrain::expect(uint32_t command, std::string payload) {
    expectedCommand_ = command;
    expectedPayload_ = std::move(payload);
}

int CommandDrain::takeAll() {
    char payload[4096];
    int count = 0;
    while (true) {
        uint32_t command = 0;
        uint32_t size = sizeof(payload);
        if (!commands_.dequeue(command, payload, &size)) {
            return count;
        }
        // A frame without payload leaves the size alone, and no payload is as large as the buffer.
        const std::size_t length = size == sizeof(payload) ? 0 : size;
        if (command != expectedCommand_ || length != expectedPayload_.size() ||
            std::memcmp(payload, expectedPayload_.data(), length) != 0) {
            throw std::runtime_error("the channel held a frame that nobody sent");
        }
        ++count;
    }
}

}  // namespace vantric_bench
