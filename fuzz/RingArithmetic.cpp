#include "fuzz/RingArithmetic.h"

#include <utility>

namespace vantric_fuzz {

namespace {

constexpr uint32_t setUpMark = 1;

uint32_t wordAt(const Bytes& bytes, std::size_t offset) {
    uint32_t word = 0;
    for (std::size_t index = 4; index > 0; --index) {
        word = word << 8U | bytes[offset + index - 1];
    }
    return word;
}

}  // namespace

RingArithmetic::RingArithmetic(Bytes object) : object_(std::move(object)) {}

void RingArithmetic::enqueue(uint32_t command, const Bytes& payload) {
    Bytes frame;
    vantric_test::appendWord(frame, command);
    vantric_test::appendWord(frame, static_cast<uint32_t>(payload.size()));
    frame.insert(frame.end(), payload.begin(), payload.end());
    if (!isUsable() || frame.size() > free()) {
        return;
    }
    for (const unsigned char byte : frame) {
        put(byte);
    }
    setByte(empty, 0);
    setByte(full, word(readIndex) == word(writeIndex) ? 1 : 0);
}

std::optional<RingModel::Frame> RingArithmetic::dequeue(std::optional<std::size_t> bufferSize) {
    const auto header = take(RingModel::headerSize);
    if (!header) {
        return std::nullopt;
    }
    const uint32_t command = wordAt(*header, 0);
    const uint32_t size = wordAt(*header, 4);
    if (size == 0) {
        return RingModel::Frame{command, {}};
    }
    if (!bufferSize || size > *bufferSize) {
        return std::nullopt;
    }
    const auto payload = take(size);
    return payload ? std::optional(RingModel::Frame{command, *payload}) : std::nullopt;
}

std::optional<Bytes> RingArithmetic::take(std::size_t count) {
    if (!isUsable() || count > used()) {
        return std::nullopt;
    }
    Bytes taken;
    for (std::size_t index = word(readIndex); taken.size() < count;) {
        taken.push_back(object_[firstData + index]);
        index = (index + 1) % word(capacity);
        setWord(readIndex, static_cast<uint32_t>(index));
    }
    setByte(full, 0);
    setByte(empty, word(readIndex) == word(writeIndex) ? 1 : 0);
    return taken;
}

void RingArithmetic::put(unsigned char byte) {
    object_[firstData + word(writeIndex)] = byte;
    setWord(writeIndex, (word(writeIndex) + 1) % word(capacity));
}

bool RingArithmetic::isUsable() const {
    return word(initialized) == setUpMark && word(capacity) <= RingModel::capacity &&
           word(readIndex) < word(capacity) && word(writeIndex) < word(capacity);
}

std::size_t RingArithmetic::used() const {
    if (word(readIndex) == word(writeIndex)) {
        return object_[full] != 0 ? word(capacity) : 0;
    }
    return (word(capacity) + word(writeIndex) - word(readIndex)) % word(capacity);
}

// An empty ring's indices are equal as a full one's are, and each has a flag of its own.
std::size_t RingArithmetic::free() const {
    if (word(readIndex) == word(writeIndex)) {
        return object_[empty] != 0 ? word(capacity) : 0;
    }
    return word(capacity) - used();
}

uint32_t RingArithmetic::word(std::size_t offset) const {
    return wordAt(object_, offset);
}

void RingArithmetic::setWord(std::size_t offset, uint32_t word) {
    for (std::size_t index = 0; index < 4; ++index) {
        object_[offset + index] = static_cast<unsigned char>(word >> (8 * index));
    }
}

}  // namespace vantric_fuzz
