#include "Vantric/ClientServer/SharedMemoryModemCommands.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>

#include "CoreMisc/src/VyLog.h"
#include "Vantric/ClientServer/SharedMemoryCircularBuffer.h"

namespace com_qel::Orvane::Vantric::ClientServer {

namespace {

constexpr const char* channelSourceFile = "Vantric/ClientServer/SharedMemoryModemCommands";

// These two lines are part of their records' contract.
constexpr int missingBufferLine = 87;
constexpr int insufficientBufferLine = 93;

constexpr uint32_t ringCapacity = 4096;

using Ring = SharedMemoryCircularBuffer<unsigned char, ringCapacity>;

static_assert(sizeof(Ring::Memory) == 4124);
static_assert(offsetof(Ring::Memory, initialized) == 0);
static_assert(offsetof(Ring::Memory, producers) == 4);
static_assert(offsetof(Ring::Memory, consumers) == 8);
static_assert(offsetof(Ring::Memory, readIndex) == 12);
static_assert(offsetof(Ring::Memory, writeIndex) == 16);
static_assert(offsetof(Ring::Memory, capacity) == 20);
static_assert(offsetof(Ring::Memory, full) == 24);
static_assert(offsetof(Ring::Memory, empty) == 25);
static_assert(offsetof(Ring::Memory, data) == 26);

struct FrameHeader {
    uint32_t command;
    uint32_t payloadSize;
};
static_assert(sizeof(FrameHeader) == 8);

constexpr uint32_t headerSize = sizeof(FrameHeader);
constexpr uint32_t largestPayload = ringCapacity - headerSize;

// Memory for one frame. The array forms of the operators add a call to each, and a vector fills its
// memory with zeros first, which costs a tenth of an enqueue.
struct RawMemoryDeleter {
    void operator()(unsigned char* memory) const { ::operator delete(memory); }
};
using RawMemory = std::unique_ptr<unsigned char, RawMemoryDeleter>;

}  // namespace

struct SharedMemoryModemCommands::Implementation {
    Ring ring;
};

SharedMemoryModemCommands::SharedMemoryModemCommands(bool consumer)
    : implementation_(new Implementation{{"ModemCommandsShm", consumer}}) {}

SharedMemoryModemCommands::~SharedMemoryModemCommands() = default;

bool SharedMemoryModemCommands::enqueue(uint32_t command, const void* payload, uint32_t size) {
    if (size > largestPayload || (payload == nullptr && size != 0)) {
        return true;
    }
    const uint32_t frameSize = headerSize + size;
    const RawMemory frame(static_cast<unsigned char*>(::operator new(frameSize)));
    std::memcpy(frame.get() + offsetof(FrameHeader, command), &command, sizeof(command));
    std::memcpy(frame.get() + offsetof(FrameHeader, payloadSize), &size, sizeof(size));
    std::copy_n(static_cast<const unsigned char*>(payload), size, frame.get() + headerSize);
    implementation_->ring.push(frame.get(), frameSize);
    return true;
}

bool SharedMemoryModemCommands::dequeue(uint32_t& command, void* buffer, uint32_t* size) {
    FrameHeader header;
    if (!implementation_->ring.pop(reinterpret_cast<unsigned char*>(&header), headerSize)) {
        return false;
    }
    if (header.payloadSize == 0) {
        command = header.command;
        return true;
    }
    const auto signedCommand = static_cast<int32_t>(header.command);
    if (buffer == nullptr || size == nullptr) {
        VyLog(VyLog::Error, channelSourceFile, missingBufferLine, 0)
            .append("Dequeue command received command with payload but no buffer to transfer it. ")
            .append("Command: <")
            .append(signedCommand)
            .append(">");
        return false;
    }
    if (header.payloadSize > *size) {
        VyLog(VyLog::Error, channelSourceFile, insufficientBufferLine, 0)
            .append("Dequeue command insufficient payload buffer. Command: <")
            .append(signedCommand)
            .append(">, Received size: <")
            .append(header.payloadSize)
            .append(">, Buffer size: <")
            .append(*size);
        return false;
    }
    if (!implementation_->ring.pop(static_cast<unsigned char*>(buffer), header.payloadSize)) {
        return false;
    }
    *size = header.payloadSize;
    command = header.command;
    return true;
}

}  // namespace com_qel::Orvane::Vantric::ClientServer
