// Sees the ring at the beginning and at the end of each hold of its lock, from inside the hold.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "tests/soak/FramePattern.h"
#include "tests/soak/Supervision.h"
#include "tests/support/RawSegment.h"
#include "tests/support/SemaphoreCalls.h"

namespace vantric_soak {

// Where the ring is read and written, with an arithmetic of its own.
struct RingState {
    uint32_t readIndex;
    uint32_t writeIndex;
    bool isFull;
    bool isEmpty;

    uint32_t used() const {
        if (readIndex == writeIndex) {
            return isFull ? ringCapacity : 0;
        }
        return (writeIndex + ringCapacity - readIndex) % ringCapacity;
    }

    uint32_t free() const { return ringCapacity - used(); }

    RingState afterWriting(uint32_t count) const {
        const uint32_t index = (writeIndex + count) % ringCapacity;
        return {readIndex, index, index == readIndex, false};
    }

    RingState afterReading(uint32_t count) const {
        const uint32_t index = (readIndex + count) % ringCapacity;
        return {index, writeIndex, false, index == writeIndex};
    }

    friend bool operator==(const RingState& left, const RingState& right) {
        return left.readIndex == right.readIndex && left.writeIndex == right.writeIndex &&
               left.isFull == right.isFull && left.isEmpty == right.isEmpty;
    }
};

// For a process that uses no other lock than the ring's while it watches.
class RingWitness {
  public:
    struct Hold {
        RingState before;
        uint32_t frontCommand;  // of the frame at the front; nonsense when the ring is empty
        RingState after;
    };

    RingWitness() {
        vantric_test::observeSemaphoreCalls(
            [this](vantric_test::SemaphoreMoment moment, const sem_t*) { note(moment); });
    }

    ~RingWitness() { vantric_test::observeSemaphoreCalls(nullptr); }

    RingWitness(const RingWitness&) = delete;
    RingWitness& operator=(const RingWitness&) = delete;

    // Forgets the holds seen so far.
    void restart() { holds_.clear(); }

    const std::vector<Hold>& holds() const { return holds_; }

    // The ring as it is now, which means something only inside a hold.
    RingState state() const {
        const vantric_test::Bytes image = segment_.bytes(indicesOffset, 14);
        RingState state = {};
        std::memcpy(&state.readIndex, image.data(), sizeof(state.readIndex));
        std::memcpy(&state.writeIndex, image.data() + 4, sizeof(state.writeIndex));
        state.isFull = image[12] == 1;
        state.isEmpty = image[13] == 1;
        return state;
    }

  private:
    static constexpr std::size_t indicesOffset = 16;  // in the object
    static constexpr std::size_t dataOffset = 30;

    uint32_t commandAt(uint32_t index) const {
        uint32_t command = 0;
        for (uint32_t byte = 0; byte < sizeof(command); ++byte) {
            const std::size_t offset = dataOffset + (index + byte) % ringCapacity;
            command |= uint32_t{segment_.bytes(offset, 1)[0]} << (8 * byte);
        }
        return command;
    }

    void note(vantric_test::SemaphoreMoment moment) {
        if (moment == vantric_test::SemaphoreMoment::Taken) {
            const RingState before = state();
            holds_.push_back({before, commandAt(before.readIndex), {}});
        } else if (moment == vantric_test::SemaphoreMoment::AboutToPost) {
            require(!holds_.empty(), "a lock was released that had not been taken");
            holds_.back().after = state();
        }
    }

    vantric_test::RawSegment segment_{"ModemCommandsShm"};
    std::vector<Hold> holds_;
};

}  // namespace vantric_soak
