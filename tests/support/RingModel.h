// What the command ring's object has to hold after any sequence of operations, worked out from the
// contract: unread bytes stand in a queue and positions are running totals, so indices and flags
// are results here, never state.
//
// Bytes rather than frames are queued, because a consumer without a sufficient buffer loses a
// frame's header and then reads headers out of payloads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>

#include "tests/support/RawSegment.h"

namespace vantric_test {

class RingModel {
  public:
    static constexpr std::size_t capacity = 4096;
    static constexpr std::size_t headerSize = 8;

    struct Frame {
        uint32_t command;
        Bytes payload;
    };

    // How often something happened that a random run must reach to be worth anything.
    struct Occurrences {
        unsigned int setUps = 0;
        unsigned int removals = 0;  // of the object
        unsigned int droppedFrames = 0;
        unsigned int splitFrames = 0;     // across the end of the data
        unsigned int filledRings = 0;     // to the last byte
        unsigned int lostHeaders = 0;     // of a payload that stays
        unsigned int partialHeaders = 0;  // refused
        unsigned int dequeuedFrames = 0;
    };

    void attachProducer();
    void attachConsumer();
    void detachProducer();
    void detachConsumer();

    void enqueue(uint32_t command, const Bytes& payload);

    // Empty for a dequeue that fails; no size stands for a missing buffer.
    std::optional<Frame> dequeue(std::optional<std::size_t> bufferSize);

    // Whether the object exists, and all its bytes.
    bool exists() const { return attached_ != 0; }
    Bytes image() const;

    std::size_t freeBytes() const { return isSetUp_ ? capacity - unread_.size() : 0; }
    const Occurrences& occurrences() const { return occurrences_; }

  private:
    void attach();
    void detach();
    uint32_t takeWord();

    uint32_t attached_ = 0;
    uint32_t producers_ = 0;
    uint32_t consumers_ = 0;
    bool isSetUp_ = false;
    uint64_t written_ = 0;  // bytes since the ring was set up
    std::deque<unsigned char> unread_;
    Bytes data_ = Bytes(capacity, 0);
    Occurrences occurrences_;
};

}  // namespace vantric_test
