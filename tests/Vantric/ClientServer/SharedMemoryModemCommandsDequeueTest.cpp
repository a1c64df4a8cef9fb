#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "tests/Vantric/ClientServer/RingImage.h"
#include "tests/support/ErrorRecord.h"
#include "tests/support/ProcessFacts.h"
#include "tests/support/RawSemaphore.h"
#include "tests/support/Roles.h"

namespace vantric_test {
namespace {

using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands;

constexpr uint32_t untouchedCommand = 0xABCDABCD;
constexpr unsigned char untouchedByte = 0xEE;
constexpr const char* sourceName = "SharedMemoryModemCommands";

// A server and a client at one ring, and what the last dequeue() handed out.
struct Channel {
    SharedMemoryModemCommands producer{false};
    SharedMemoryModemCommands consumer{true};
    RawSegment segment{ringName};
    uint32_t command = untouchedCommand;
    Bytes buffer = Bytes(5000, untouchedByte);
    uint32_t size = 5000;

    bool enqueue(uint32_t id, const Bytes& payload = {}) {
        return producer.enqueue(id, payload.data(), static_cast<uint32_t>(payload.size()));
    }

    bool dequeue() { return dequeueInto(5000); }

    bool dequeueInto(uint32_t capacity) {
        command = untouchedCommand;
        buffer.assign(buffer.size(), untouchedByte);
        size = capacity;
        return consumer.dequeue(command, buffer.data(), &size);
    }

    bool isUntouched(uint32_t capacity = 5000) const {
        return command == untouchedCommand && size == capacity &&
               buffer == Bytes(buffer.size(), untouchedByte);
    }

    // Whether the last dequeue() handed out this frame and wrote nothing else.
    testing::AssertionResult gave(uint32_t id, const Bytes& payload) const {
        Bytes expected = payload;
        expected.resize(buffer.size(), untouchedByte);
        if (command == id && size == payload.size() && buffer == expected) {
            return testing::AssertionSuccess();
        }
        return testing::AssertionFailure() << "got command " << command << " of size " << size;
    }

    // The ring with other contents and this channel's attachments.
    RingImage image() const {
        RingImage ring;
        ring.attached = 2;
        ring.consumers = 1;
        return ring;
    }
};

// Dequeues a frame for which the buffer does not do. arguments: command, payload size, kind of
// buffer ("noBuffer", "noSize" or the buffer's capacity). The exit code tells what went wrong.
const RoleRegistration unprepared("unpreparedConsumer", [](const std::vector<std::string>& texts) {
    const auto command = static_cast<uint32_t>(std::stoul(texts.at(0)));
    const std::string& kind = texts.at(2);
    Channel channel;
    channel.enqueue(command, pattern(std::stoul(texts.at(1))));
    const uint32_t capacity =
        kind == "noBuffer" || kind == "noSize" ? 5000 : static_cast<uint32_t>(std::stoul(kind));
    channel.size = capacity;
    const bool isDequeued = channel.consumer.dequeue(
        channel.command, kind == "noBuffer" ? nullptr : channel.buffer.data(),
        kind == "noSize" ? nullptr : &channel.size);
    if (isDequeued) {
        return 1;
    }
    if (!channel.isUntouched(capacity)) {
        return 2;
    }
    return channel.segment.word(16) == 8 ? 0 : 3;
});

void expectRefusal(const std::vector<std::string>& arguments, int line, const std::string& text) {
    const Result result = run(roleCommand("unpreparedConsumer", arguments, errorsOnConsole()));
    ASSERT_TRUE(result.status.has_value());
    EXPECT_EQ(result.status->raw, 0) << result.errors;
    EXPECT_TRUE(isOneErrorRecord(result.output, sourceName, line, text));
}

// Runs every failure that is not to be logged.
const RoleRegistration quiet("quietConsumer", [](const std::vector<std::string>&) {
    Channel channel;
    int dequeued = channel.dequeue() ? 1 : 0;
    channel.segment.writeWord(20, 5);  // a partial header
    dequeued += channel.dequeue() ? 1 : 0;
    channel.segment.writeWord(4, 0);  // not set up
    dequeued += channel.dequeue() ? 1 : 0;
    RingImage missingPayload = channel.image();
    missingPayload.put(0, {5, 0, 0, 0, 9, 0, 0, 0});
    missingPayload.writeIndex = 12;
    missingPayload.empty = 0;
    channel.segment.write(0, missingPayload.bytes());
    dequeued += channel.dequeue() ? 1 : 0;
    return dequeued;
});

TEST(SharedMemoryModemCommands, aConsumerAloneDequeuesNothing) {
    SharedMemoryModemCommands consumer(true);
    uint32_t command = untouchedCommand;
    EXPECT_FALSE(consumer.dequeue(command, nullptr, nullptr));
    EXPECT_EQ(command, untouchedCommand);
}

TEST(SharedMemoryModemCommands, anEmptyRingDequeuesNothing) {
    Channel channel;
    EXPECT_FALSE(channel.dequeue());
    EXPECT_TRUE(channel.isUntouched());
    EXPECT_TRUE(holds(channel.segment, channel.image()));
}

TEST(SharedMemoryModemCommands, framesComeOutInOrderWithTheirPayloads) {
    Channel channel;
    channel.enqueue(7, pattern(3));
    channel.enqueue(0xFFFFFFFF, pattern(300));
    ASSERT_TRUE(channel.dequeue());
    EXPECT_TRUE(channel.gave(7, pattern(3)));
    ASSERT_TRUE(channel.dequeue());
    EXPECT_TRUE(channel.gave(0xFFFFFFFF, pattern(300)));
    EXPECT_FALSE(channel.dequeue());
}

TEST(SharedMemoryModemCommands, aFrameWithoutPayloadLeavesBufferAndSizeUntouched) {
    Channel channel;
    channel.enqueue(5);
    ASSERT_TRUE(channel.dequeueInto(3));
    EXPECT_EQ(channel.command, 5U);
    channel.command = untouchedCommand;
    EXPECT_TRUE(channel.isUntouched(3));
}

TEST(SharedMemoryModemCommands, aFrameWithoutPayloadNeedsNoBuffer) {
    Channel channel;
    channel.enqueue(6);
    EXPECT_TRUE(channel.consumer.dequeue(channel.command, nullptr, nullptr));
    EXPECT_EQ(channel.command, 6U);
}

TEST(SharedMemoryModemCommands, aPayloadMayFillTheBufferExactly) {
    Channel channel;
    channel.enqueue(9, pattern(20));
    ASSERT_TRUE(channel.dequeueInto(20));
    EXPECT_TRUE(channel.gave(9, pattern(20)));
}

TEST(SharedMemoryModemCommands, dequeueingMovesTheReadIndexAndEmptiesTheRing) {
    Channel channel;
    channel.enqueue(9, pattern(20));
    channel.enqueue(5);
    RingImage expected = channel.image();
    expected.put(0, frame(9, pattern(20)));
    expected.put(28, frame(5));
    expected.readIndex = 28;
    expected.writeIndex = 36;
    expected.empty = 0;
    ASSERT_TRUE(channel.dequeue());
    EXPECT_TRUE(holds(channel.segment, expected));
    expected.readIndex = 36;
    expected.empty = 1;
    ASSERT_TRUE(channel.dequeue());
    EXPECT_TRUE(holds(channel.segment, expected));
    EXPECT_EQ(semaphoreValue(ringLockName), 1);
}

TEST(SharedMemoryModemCommands, framesAreReadBackIntactFromEveryOffset) {
    Channel channel;
    const Bytes payload = pattern(25);
    for (uint32_t start = 0; start < ringCapacity; ++start) {
        channel.segment.writeWord(16, start);
        channel.segment.writeWord(20, start);
        channel.enqueue(start, payload);
        ASSERT_TRUE(channel.dequeue()) << start;
        ASSERT_TRUE(channel.gave(start, payload)) << start;
        ASSERT_EQ(channel.segment.word(16), (start + 33) % ringCapacity);
        ASSERT_EQ(channel.segment.bytes(28, 2), (Bytes{0, 1}));
    }
}

TEST(SharedMemoryModemCommands, aFullRingIsReadBackFrameByFrame) {
    Channel channel;
    for (uint32_t id = 0; id < 4; ++id) {
        channel.enqueue(id, pattern(ringCapacity / 4 - 8));
    }
    ASSERT_EQ(channel.segment.bytes(28, 2), (Bytes{1, 0}));
    ASSERT_EQ(channel.segment.word(16), channel.segment.word(20));
    for (uint32_t id = 0; id < 4; ++id) {
        ASSERT_TRUE(channel.dequeue());
        EXPECT_TRUE(channel.gave(id, pattern(ringCapacity / 4 - 8)));
        EXPECT_EQ(channel.segment.bytes(28, 1), Bytes{0});
    }
    EXPECT_EQ(channel.segment.bytes(28, 2), (Bytes{0, 1}));
}

TEST(SharedMemoryModemCommands, theLargestFrameIsReadBackIntact) {
    Channel channel;
    channel.segment.writeWord(16, 1234);
    channel.segment.writeWord(20, 1234);
    channel.enqueue(12, pattern(4088));
    ASSERT_EQ(channel.segment.bytes(28, 2), (Bytes{1, 0}));
    ASSERT_TRUE(channel.dequeue());
    EXPECT_TRUE(channel.gave(12, pattern(4088)));
}

TEST(SharedMemoryModemCommands, aPartialHeaderIsLeftInPlace) {
    Channel channel;
    for (uint32_t used = 1; used < 8; ++used) {
        RingImage ring = channel.image();
        ring.readIndex = 4093;
        ring.writeIndex = (4093 + used) % ringCapacity;
        ring.empty = 0;
        channel.segment.write(0, ring.bytes());
        EXPECT_FALSE(channel.dequeue());
        EXPECT_TRUE(channel.isUntouched());
        EXPECT_TRUE(holds(channel.segment, ring));
    }
}

TEST(SharedMemoryModemCommands, missingPayloadBytesLoseTheHeaderOnly) {
    Channel channel;
    RingImage ring = channel.image();
    ring.put(4090, {5, 0, 0, 0, 9, 0, 0, 0, 1, 2, 3, 4});  // four of nine payload bytes
    ring.readIndex = 4090;
    ring.writeIndex = 6;
    ring.empty = 0;
    channel.segment.write(0, ring.bytes());
    EXPECT_FALSE(channel.dequeue());
    EXPECT_TRUE(channel.isUntouched());
    ring.readIndex = 2;
    EXPECT_TRUE(holds(channel.segment, ring));
    EXPECT_EQ(semaphoreValue(ringLockName), 1);
}

TEST(SharedMemoryModemCommands, aPayloadThatIsMissingAltogetherLosesTheHeader) {
    Channel channel;
    RingImage ring = channel.image();
    ring.put(0, {5, 0, 0, 0, 9, 0, 0, 0});
    ring.writeIndex = 8;
    ring.empty = 0;
    channel.segment.write(0, ring.bytes());
    EXPECT_FALSE(channel.dequeue());
    EXPECT_TRUE(channel.isUntouched());
    ring.readIndex = 8;
    ring.empty = 1;
    EXPECT_TRUE(holds(channel.segment, ring));
}

TEST(SharedMemoryModemCommands, aBufferTooSmallIsLoggedWithBothSizes) {
    expectRefusal({"9", "20", "10"}, 93,
                  "Dequeue command insufficient payload buffer. Command: <9>, Received size: "
                  "<20>, Buffer size: <10");
}

TEST(SharedMemoryModemCommands, aBufferOneByteTooSmallIsLogged) {
    expectRefusal({"4294967294", "1", "0"}, 93,
                  "Dequeue command insufficient payload buffer. Command: <-2>, Received size: <1>, "
                  "Buffer size: <0");
}

TEST(SharedMemoryModemCommands, aMissingBufferIsLogged) {
    expectRefusal({"9", "20", "noBuffer"}, 87,
                  "Dequeue command received command with payload but no buffer to transfer it. "
                  "Command: <9>");
}

TEST(SharedMemoryModemCommands, aMissingSizeIsLoggedWithTheSignedCommand) {
    expectRefusal({"2147483648", "1", "noSize"}, 87,
                  "Dequeue command received command with payload but no buffer to transfer it. "
                  "Command: <-2147483648>");
}

TEST(SharedMemoryModemCommands, noOtherFailureIsLogged) {
    const Result result = run(roleCommand("quietConsumer", {}, errorsOnConsole()));
    ASSERT_TRUE(result.status.has_value());
    EXPECT_EQ(result.status->raw, 0) << result.errors;
    EXPECT_EQ(result.output, "");
}

TEST(SharedMemoryModemCommands, afterARefusalThePayloadIsTakenForFrames) {
    Channel channel;
    channel.enqueue(9, {5, 0, 0, 0, 4, 0, 0, 0, 'p', 'q', 'r', 's', 6, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_FALSE(channel.dequeueInto(10));
    EXPECT_TRUE(channel.isUntouched(10));
    ASSERT_TRUE(channel.dequeue());
    EXPECT_TRUE(channel.gave(5, {'p', 'q', 'r', 's'}));
    ASSERT_TRUE(channel.dequeue());
    EXPECT_EQ(channel.command, 6U);
    EXPECT_FALSE(channel.dequeue());
}

TEST(SharedMemoryModemCommands, dequeueingWaitsForTheLock) {
    Channel channel;
    channel.enqueue(9, pattern(4));
    RawSemaphore semaphore(ringLockName);
    ASSERT_TRUE(semaphore.tryTake());
    bool isDequeued = false;
    const BackgroundAction dequeueing([&] { isDequeued = channel.dequeue(); });
    EXPECT_TRUE(dequeueing.blocks());
    EXPECT_EQ(channel.segment.word(16), 0U);
    semaphore.post();
    EXPECT_TRUE(dequeueing.ends());
    EXPECT_TRUE(isDequeued);
    EXPECT_TRUE(channel.gave(9, pattern(4)));
    EXPECT_EQ(semaphore.value(), 1);
}

}  // namespace
}  // namespace vantric_test
