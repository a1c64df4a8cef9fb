// The ring of commands, decoded from a copy of its object. Pure functions, safe from any thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Vantric/ClientServer/SharedMemoryCircularBuffer.h"
#include "ctl/SharedFile.h"

namespace vantricctl {

constexpr const char* ringName = "ModemCommandsShm";
constexpr uint32_t ringCapacity = 4096;

using RingMemory =
    com_qel::Orvane::Vantric::ClientServer::SharedMemoryCircularBuffer<unsigned char,
                                                                       ringCapacity>::Memory;

constexpr std::size_t ringObjectSize = attachCountSize + sizeof(RingMemory);

// Command and length.
constexpr uint32_t frameHeaderSize = 8;

struct WaitingFrame {
    uint32_t command;
    std::string payload;
    bool isComplete;  // false when its length exceeds what the ring holds; the last one then
};

struct Ring {
    RingMemory memory = {};

    bool isSetUp() const { return memory.initialized == 1; }

    // Whether capacity and indices may be followed.
    bool isPossible() const;

    // Bytes that wait to be taken out; 0 unless the ring is possible.
    uint32_t usedBytes() const;
    uint32_t freeBytes() const { return isPossible() ? ringCapacity - usedBytes() : 0; }

    std::vector<WaitingFrame> frames() const;
};

// Zeros stand for what the copy does not hold.
Ring decodeRing(const SharedFile& file);

// "Unknown" for a command that clients do not send.
const char* commandName(uint32_t command);

// The payload with its secrets replaced by "(hidden)", the whole payload of an unknown command.
std::string withoutSecrets(const WaitingFrame& frame);

}  // namespace vantricctl
