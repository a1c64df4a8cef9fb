// The ring of commands, decoded from a copy of its object. Pure functions, safe from any thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Vantric/ClientServer/SharedMemoryCircularBuffer.h"
#include "ctl/SharedObjects.h"

namespace vantricctl {

constexpr uint32_t ringCapacity = 4096;

using RingMemory =
    com_qel::Orvane::Vantric::ClientServer::SharedMemoryCircularBuffer<unsigned char,
                                                                       ringCapacity>::Memory;

template <>
inline constexpr SharedObject objectOf<RingMemory> = {"ModemCommandsShm", attachCountSize,
                                                      attachCountSize + sizeof(RingMemory)};

// Command and length.
constexpr uint32_t frameHeaderSize = 8;

struct WaitingFrame {
    uint32_t command;
    std::string payload;
    bool isComplete;  // false when its length exceeds what the ring holds; the last one then

    // "Unknown" for a command that clients do not send.
    const char* name() const;

    // The payload with its secrets replaced by "(hidden)", and the whole of an unknown command's.
    std::string withoutSecrets() const;
};

struct Ring {
    RingMemory memory;

    bool isSetUp() const { return memory.initialized == 1; }

    // Whether capacity and indices may be followed.
    bool isPossible() const;

    // Bytes that wait to be taken out; 0 unless the ring is possible.
    uint32_t usedBytes() const;
    uint32_t freeBytes() const { return isPossible() ? ringCapacity - usedBytes() : 0; }

    std::vector<WaitingFrame> frames() const;
};

inline Ring readRing() {
    return {recordIn<RingMemory>(copyOf(objectOf<RingMemory>))};
}

}  // namespace vantricctl
