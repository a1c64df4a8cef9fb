// Rings whose header another process has broken: nothing may be written outside the ring, nothing
// read from outside it, and nothing may crash or hang.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <iterator>

#include "tests/Vantric/ClientServer/CommandChannel.h"
#include "tests/support/Roles.h"

namespace vantric_test {
namespace {

// Changes the ring's header all the time until it is killed. arguments: none
const RoleRegistration scribbler("scribbler", [](const Arguments&) {
    RawSegment segment(ringName);
    const uint32_t values[] = {0, 1, 7, 8, 4095, 4096, 4097, 0x80000000, UINT32_MAX};
    std::puts("scribbling");
    std::fflush(stdout);
    for (std::size_t step = 0; true; ++step) {  // in time, every value in every word
        segment.writeWord(4, 1);
        segment.writeWord(16 + 4 * (step % 4), values[step % std::size(values)]);
        segment.writeWord(24, ringCapacity);
    }
    return 0;
});

// A ring of which nothing but these fields is out of the ordinary.
RingImage ringWith(uint32_t capacity, uint32_t readIndex, uint32_t writeIndex, unsigned char full,
                   unsigned char empty) {
    RingImage image = CommandChannel::empty();
    image.capacity = capacity;
    image.readIndex = readIndex;
    image.writeIndex = writeIndex;
    image.full = full;
    image.empty = empty;
    return image;
}

TEST(HostileMemory, aRingThatIsNotSetUpIsUnusable) {
    CommandChannel channel;
    for (const uint32_t initialized : {0U, 2U, 0x01000000U, UINT32_MAX}) {
        channel.image.initialized = initialized;
        channel.expectUnusable();
    }
}

TEST(HostileMemory, aHeaderThatCannotBeTrueMakesTheRingUnusable) {
    std::vector<RingImage> images = {ringWith(ringCapacity, 50, 50, 0, 0)};
    for (const uint32_t capacity : {0U, 7U, ringCapacity + 1, 0x80000000U, UINT32_MAX}) {
        for (const uint32_t writeIndex : {0U, std::min(capacity - 1, 20U)}) {
            images.push_back(ringWith(capacity, 0, writeIndex, 1, 0));
            images.push_back(ringWith(capacity, 0, writeIndex, 0, 1));
        }
    }
    for (const uint32_t capacity : {8U, 100U, ringCapacity}) {
        for (const uint32_t index : {capacity, capacity + 1, 0x80000000U, UINT32_MAX}) {
            images.push_back(ringWith(capacity, index, 0, 0, 1));
            images.push_back(ringWith(capacity, 0, index, 0, 1));
            images.push_back(ringWith(capacity, index, index, 0, 1));
            images.push_back(ringWith(capacity, index, index, 1, 0));
        }
    }
    CommandChannel channel;
    for (const RingImage& image : images) {
        SCOPED_TRACE(testing::Message()
                     << "capacity " << image.capacity << ", indices " << image.readIndex << " and "
                     << image.writeIndex << ", flags " << +image.full << " and " << +image.empty);
        channel.image = image;
        channel.expectUnusable();
    }
}

TEST(HostileMemory, aSmallerCapacityIsHonoured) {
    CommandChannel channel;
    channel.image = ringWith(24, 20, 20, 0, 1);
    channel.apply();
    EXPECT_TRUE(channel.enqueue(5, {1, 2, 3}));
    channel.image.put(20, {5, 0, 0, 0});
    channel.image.put(0, {3, 0, 0, 0, 1, 2, 3});
    channel.image.writeIndex = 7;
    channel.image.empty = 0;
    EXPECT_TRUE(holds(channel.segment, channel.image));
    ASSERT_TRUE(channel.dequeue());
    EXPECT_EQ(channel.command, 5U);
    EXPECT_EQ(channel.size, 3U);
    EXPECT_EQ(Bytes(channel.buffer.begin(), channel.buffer.begin() + 3), (Bytes{1, 2, 3}));

    EXPECT_TRUE(channel.enqueue(6, Bytes(17)));  // a frame of 25 bytes
    channel.image.readIndex = 7;
    channel.image.empty = 1;
    EXPECT_TRUE(holds(channel.segment, channel.image));
}

TEST(HostileMemory, equalIndicesWithBothFlagsSetCanBeWrittenAndRead) {
    CommandChannel channel;
    channel.image = ringWith(ringCapacity, 50, 50, 1, 1);
    channel.image.put(50, frame(9));
    channel.apply();
    ASSERT_TRUE(channel.dequeue());
    EXPECT_EQ(channel.command, 9U);

    channel.apply();
    EXPECT_TRUE(channel.enqueue(6));
    channel.image = ringWith(ringCapacity, 50, 58, 0, 0);
    channel.image.put(50, frame(6));
    EXPECT_TRUE(holds(channel.segment, channel.image));
}

TEST(HostileMemory, aPayloadSizeBeyondTheRingIsRefusedHoweverLargeTheBufferClaimsToBe) {
    CommandChannel channel;
    for (const uint32_t size : {93U, ringCapacity + 1, 0x80000000U, UINT32_MAX}) {
        Bytes header;
        appendWord(header, 5);
        appendWord(header, size);
        channel.image = ringWith(ringCapacity, 0, 100, 0, 0);
        channel.image.put(0, header);
        channel.apply();
        EXPECT_FALSE(channel.dequeue(UINT32_MAX));
        EXPECT_TRUE(channel.isUntouched(UINT32_MAX));
        channel.image.readIndex = 8;
        EXPECT_TRUE(holds(channel.segment, channel.image));
    }
}

TEST(HostileMemory, theHighestRoleCountsDoNoHarm) {
    CommandChannel channel;
    channel.image.producers = UINT32_MAX;
    channel.image.consumers = UINT32_MAX;
    channel.apply();
    {
        const CommandChannel another;
        EXPECT_EQ(another.segment.word(8), 0U);
        EXPECT_EQ(another.segment.word(12), 0U);
    }
    EXPECT_EQ(channel.segment.word(8), 0U);
    EXPECT_EQ(channel.segment.word(12), 0U);
}

TEST(HostileMemory, aHeaderThatChangesAllTheTimeDoesNoHarm) {
    CommandChannel channel;
    const Bytes payload = pattern(60);
    ChildProcess process(roleCommand("scribbler"));
    ASSERT_TRUE(process.waitForOutput("scribbling"));
    for (int round = 0; round < 20000; ++round) {
        ASSERT_TRUE(channel.enqueue(5, payload));
        channel.dequeue(60);
        ASSERT_EQ(Bytes(channel.buffer.begin() + 60, channel.buffer.end()), Bytes(40, 0xEE));
    }
    process.sendSignal(SIGKILL);
    ASSERT_TRUE(process.wait().has_value());

    EXPECT_EQ(channel.segment.bytes(4126, 2), (Bytes{0, 0}));
    EXPECT_EQ(semaphoreValue(ringLockName), 1);
    channel.apply();
    ASSERT_TRUE(channel.enqueue(5, payload));
    ASSERT_TRUE(channel.dequeue());
    EXPECT_EQ(channel.command, 5U);
}

}  // namespace
}  // namespace vantric_test
