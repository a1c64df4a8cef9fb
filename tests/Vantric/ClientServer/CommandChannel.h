// A server and a client at one command ring, and what the last dequeue() handed out.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "tests/Vantric/ClientServer/RingImage.h"
#include "tests/support/RawSemaphore.h"

namespace vantric_test {

struct CommandChannel {
    using SharedMemoryModemCommands =
        com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands;

    static constexpr std::size_t bufferSize = 100;
    static constexpr uint32_t untouchedCommand = 0xABCDABCD;
    static constexpr unsigned char untouchedByte = 0xEE;

    std::unique_ptr<SharedMemoryModemCommands> producer =
        std::make_unique<SharedMemoryModemCommands>(false);
    std::unique_ptr<SharedMemoryModemCommands> consumer =
        std::make_unique<SharedMemoryModemCommands>(true);
    RawSegment segment{ringName};
    RingImage image = empty();  // what a case lays into the object and expects there
    uint32_t command = untouchedCommand;
    uint32_t size = 0;
    Bytes buffer;

    static RingImage empty() {
        RingImage image;
        image.attached = 2;
        image.consumers = 1;
        return image;
    }

    // Lays `image` into the object.
    void apply() { segment.write(0, image.bytes()); }

    bool enqueue(uint32_t id, const Bytes& payload = {}) {
        return producer->enqueue(id, payload.data(), static_cast<uint32_t>(payload.size()));
    }

    // Claims that the buffer has room for `capacity` bytes.
    bool dequeue(uint32_t capacity = bufferSize) {
        command = untouchedCommand;
        size = capacity;
        buffer.assign(bufferSize, untouchedByte);
        return consumer->dequeue(command, buffer.data(), &size);
    }

    bool isUntouched(uint32_t capacity = bufferSize) const {
        return command == untouchedCommand && size == capacity &&
               buffer == Bytes(bufferSize, untouchedByte);
    }

    // Enqueues and dequeues, and expects both to leave the object as it is.
    void expectUnusable() {
        apply();
        EXPECT_TRUE(enqueue(5));
        EXPECT_TRUE(holds(segment, image));
        EXPECT_FALSE(dequeue());
        EXPECT_TRUE(isUntouched());
        EXPECT_TRUE(holds(segment, image));
        EXPECT_EQ(semaphoreValue(ringLockName), 1);
    }
};

}  // namespace vantric_test
