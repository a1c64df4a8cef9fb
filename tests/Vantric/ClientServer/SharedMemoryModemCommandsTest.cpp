#include <gtest/gtest.h>

#include <new>
#include <string>

#include "tests/Vantric/ClientServer/CommandChannel.h"
#include "tests/Vantric/ClientServer/WaitingOperation.h"
#include "tests/support/Allocations.h"
#include "tests/support/LogTranscript.h"
#include "tests/support/Roles.h"

namespace vantric_test {
namespace {

static_assert(sizeof(CommandChannel::SharedMemoryModemCommands) == sizeof(void*));

constexpr uint32_t headerSize = 8;
constexpr uint32_t largestPayload = ringCapacity - headerSize;

// Dequeues a frame whose payload of 20 bytes finds no room. arguments: command, capacity of the
// buffer (0 for none)
const RoleRegistration unprepared("unpreparedConsumer", [](const Arguments& texts) {
    CommandChannel channel;
    auto size = static_cast<uint32_t>(std::stoul(texts.at(1)));
    unsigned char buffer[20];
    channel.enqueue(static_cast<uint32_t>(std::stoul(texts.at(0))), pattern(20));
    return channel.consumer->dequeue(channel.command, size == 0 ? nullptr : buffer, &size) ? 1 : 0;
});

// Runs every failure that is not to be logged. arguments: none
const RoleRegistration quiet("quietConsumer", [](const Arguments&) {
    CommandChannel channel;
    RingImage partialHeader = channel.image;
    partialHeader.writeIndex = 5;
    RingImage notSetUp = channel.image;
    notSetUp.initialized = 0;
    RingImage missingPayload = channel.image;
    missingPayload.put(0, {5, 0, 0, 0, 9, 0, 0, 0});
    missingPayload.writeIndex = 12;
    int dequeued = 0;
    for (const RingImage& image : {channel.image, partialHeader, notSetUp, missingPayload}) {
        channel.image = image;
        channel.apply();
        dequeued += channel.dequeue() ? 1 : 0;
    }
    return dequeued;
});

std::string logOf(const std::string& role, const std::vector<std::string>& arguments = {}) {
    const Result result = run(roleCommand(role, arguments, loggingFrom("error")));
    EXPECT_EQ(result.status.raw, 0) << result.errors;
    return withoutStamps(result.output);
}

TEST(SharedMemoryModemCommands, dropsWhatNoRingHoldsWithoutReadingOrAllocatingIt) {
    CommandChannel channel;
    const Bytes some = pattern(ringCapacity);
    const struct {
        const void* payload;
        uint32_t size;
    } rows[] = {{nullptr, 1},
                {nullptr, largestPayload},
                {nullptr, UINT32_MAX},
                {some.data(), largestPayload + 1},
                {some.data(), 0x80000000},
                {some.data(), UINT32_MAX - headerSize},      // the frame's size is the largest
                {some.data(), UINT32_MAX - headerSize + 1},  // it wraps
                {some.data(), UINT32_MAX}};
    for (const auto& row : rows) {
        const Allocations allocations;
        EXPECT_TRUE(channel.producer->enqueue(5, row.payload, row.size));
        EXPECT_LE(allocations.largestSize(), ringCapacity) << row.size;
        EXPECT_TRUE(holds(channel.segment, channel.image)) << row.size;
    }
}

TEST(SharedMemoryModemCommands, aFrameCostsOneAllocationWithoutWhichRingAndLockStayAsTheyWere) {
    CommandChannel channel;
    const Bytes payload = pattern(16);
    {
        const Allocations failing(1);
        EXPECT_THROW(channel.enqueue(5, payload), std::bad_alloc);
    }
    EXPECT_TRUE(holds(channel.segment, channel.image));
    EXPECT_EQ(semaphoreValue(ringLockName), 1);
    const Allocations allocations;
    EXPECT_TRUE(channel.enqueue(5, payload));
    EXPECT_EQ(allocations.count(), 1U);
    EXPECT_EQ(allocations.largestSize(), 24U);
}

TEST(SharedMemoryModemCommands, aBufferTooSmallIsLoggedWithBothSizes) {
    EXPECT_EQ(logOf("unpreparedConsumer", {"9", "10"}),
              errorRecord("SharedMemoryModemCommands",
                          "Dequeue command insufficient payload buffer. Command: <9>, Received "
                          "size: <20>, Buffer size: <10",
                          "   93"));
}

TEST(SharedMemoryModemCommands, aMissingBufferIsLoggedWithTheSignedCommand) {
    EXPECT_EQ(logOf("unpreparedConsumer", {"2147483648", "0"}),
              errorRecord("SharedMemoryModemCommands",
                          "Dequeue command received command with payload but no buffer to transfer "
                          "it. Command: <-2147483648>",
                          "   87"));
}

TEST(SharedMemoryModemCommands, noOtherFailureIsLogged) {
    EXPECT_EQ(logOf("quietConsumer"), "");
}

TEST(SharedMemoryModemCommands, everyOperationWaitsForTheLock) {
    CommandChannel channel;
    expectToWaitFor(ringLockName, ringName, [&] { channel.enqueue(9, pattern(4)); });
    expectToWaitFor(ringLockName, ringName, [&] { channel.dequeue(); });
    EXPECT_EQ(channel.command, 9U);
    expectToWaitFor(ringLockName, ringName, [&] { channel.consumer.reset(); });
    expectToWaitFor(ringLockName, ringName, [&] { channel.producer.reset(); });
    EXPECT_EQ(channel.segment.word(8), 0U);
    EXPECT_EQ(channel.segment.word(12), 0U);
}

}  // namespace
}  // namespace vantric_test
