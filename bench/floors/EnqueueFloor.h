// The least that queueing a command takes: a frame in allocated memory, lock, copy into the ring,
// unlock. Writes into the ring that the product reads.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "Vantric/ClientServer/SharedMemoryCircularBuffer.h"
#include "bench/floors/SharedObject.h"

namespace vantric_bench {

class EnqueueFloor {
  public:
    // False when there is no room. Not inlined: like a function of a library, it cannot know
    // the size when it is compiled.
    [[gnu::noinline]] bool enqueue(uint32_t command, const void* payload, uint32_t size) {
        const uint32_t frameSize = size + 8;
        auto* frame = static_cast<unsigned char*>(std::malloc(frameSize));
        if (frame == nullptr) {
            return false;
        }
        std::memcpy(frame, &command, sizeof(command));
        std::memcpy(frame + 4, &size, sizeof(size));
        if (size != 0) {
            std::memcpy(frame + 8, payload, size);
        }
        sem_wait(object_.semaphore());
        const bool hasRoom = copyToRing(frame, frameSize);
        sem_post(object_.semaphore());
        std::free(frame);
        return hasRoom;
    }

  private:
    static constexpr uint32_t capacity = 4096;
    using Memory =
        com_qel::Orvane::Vantric::ClientServer::SharedMemoryCircularBuffer<unsigned char,
                                                                           capacity>::Memory;

    bool copyToRing(const unsigned char* frame, uint32_t frameSize) {
        auto& memory = *static_cast<Memory*>(object_.payload());
        const uint32_t used = (memory.writeIndex - memory.readIndex) % capacity;
        if (memory.full != 0 || frameSize > capacity - used) {
            return false;
        }
        const uint32_t untilEnd = std::min(capacity - memory.writeIndex, frameSize);
        std::memcpy(memory.data + memory.writeIndex, frame, untilEnd);
        std::memcpy(memory.data, frame + untilEnd, frameSize - untilEnd);
        memory.writeIndex = (memory.writeIndex + frameSize) % capacity;
        memory.empty = 0;
        memory.full = memory.writeIndex == memory.readIndex ? 1 : 0;
        return true;
    }

    SharedObject object_{"ModemCommandsShm"};
};

}  // namespace vantric_bench
