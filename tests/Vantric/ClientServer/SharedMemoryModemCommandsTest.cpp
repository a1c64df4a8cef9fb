#include <gtest/gtest.h>
#include <sys/stat.h>

#include <memory>
#include <new>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "Vantric/ModemClient.h"
#include "tests/Vantric/ClientServer/RingImage.h"
#include "tests/support/Allocations.h"
#include "tests/support/ProcessFacts.h"
#include "tests/support/RawSemaphore.h"

namespace vantric_test {
namespace {

using com_qel::Orvane::Vantric::ModemClient;
using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands;

static_assert(sizeof(SharedMemoryModemCommands) == sizeof(void*));

constexpr std::size_t headerSize = 8;
constexpr uint32_t largestPayload = ringCapacity - headerSize;

// A ring that holds exactly these frames from `start` on.
RingImage ringWith(uint32_t start, const Bytes& frames) {
    RingImage image;
    image.readIndex = start;
    image.writeIndex = static_cast<uint32_t>((start + frames.size()) % ringCapacity);
    image.full = frames.size() == ringCapacity ? 1 : 0;
    image.empty = frames.empty() ? 1 : 0;
    image.put(start, frames);
    return image;
}

bool enqueue(SharedMemoryModemCommands& channel, uint32_t command, const Bytes& payload) {
    return channel.enqueue(command, payload.data(), static_cast<uint32_t>(payload.size()));
}

// Enqueues a payload into a ring of this state and expects the frame to be dropped.
void expectDropped(const RingImage& state, const Bytes& payload) {
    SharedMemoryModemCommands producer(false);
    RawSegment segment(ringName);
    segment.write(0, state.bytes());
    EXPECT_TRUE(enqueue(producer, 12, payload));
    EXPECT_TRUE(holds(segment, state));
    EXPECT_EQ(semaphoreValue(ringLockName), 1);
}

TEST(SharedMemoryModemCommands, createsItsObjectAndLocksUnderTheirFixedNames) {
    const SharedMemoryModemCommands producer(false);
    EXPECT_TRUE(holds(RawSegment(ringName), RingImage()));
    EXPECT_EQ(semaphoreValue("ModemCommandsShmLock"), 1);
    EXPECT_EQ(semaphoreValue("ModemCommandsShmProviderLock"), 1);
}

TEST(SharedMemoryModemCommands, attachesInTheRoleAskedFor) {
    const SharedMemoryModemCommands producer(false);
    const SharedMemoryModemCommands consumer(true);
    RingImage expected;
    expected.attached = 2;
    expected.consumers = 1;
    EXPECT_TRUE(holds(RawSegment(ringName), expected));
}

TEST(SharedMemoryModemCommands, aCommandWithoutPayloadIsAFrameOfEightBytes) {
    SharedMemoryModemCommands producer(false);
    EXPECT_TRUE(producer.enqueue(5, nullptr, 0));
    RingImage expected;
    expected.writeIndex = 8;
    expected.empty = 0;
    expected.put(0, {5, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_TRUE(holds(RawSegment(ringName), expected));
}

TEST(SharedMemoryModemCommands, aFrameIsCommandThenSizeThenPayload) {
    SharedMemoryModemCommands producer(false);
    EXPECT_TRUE(enqueue(producer, 0x81828384, {'a', 0, 'c'}));
    EXPECT_TRUE(holds(RawSegment(ringName),
                      ringWith(0, {0x84, 0x83, 0x82, 0x81, 3, 0, 0, 0, 'a', 0, 'c'})));
}

TEST(SharedMemoryModemCommands, framesFollowEachOther) {
    SharedMemoryModemCommands producer(false);
    enqueue(producer, 7, {'x'});
    enqueue(producer, 10, {});
    enqueue(producer, 9, {'y', 'z'});
    EXPECT_TRUE(
        holds(RawSegment(ringName), ringWith(0, {7, 0, 0, 0, 1, 0, 0, 0, 'x', 10, 0, 0,   0,  0,
                                                 0, 0, 0, 9, 0, 0, 0, 2, 0,   0,  0, 'y', 'z'})));
}

TEST(SharedMemoryModemCommands, aFrameThatEndsWithTheDataLeavesTheWriteIndexAtZero) {
    SharedMemoryModemCommands producer(false);
    RawSegment segment(ringName);
    const uint32_t start = ringCapacity - 18;
    segment.write(0, ringWith(start, {}).bytes());
    EXPECT_TRUE(enqueue(producer, 8, pattern(10)));
    RingImage expected;
    expected.readIndex = start;
    expected.writeIndex = 0;
    expected.empty = 0;
    expected.put(start, frame(8, pattern(10)));
    EXPECT_TRUE(holds(segment, expected));
}

TEST(SharedMemoryModemCommands, aFrameThatCrossesTheEndOfTheDataIsSplit) {
    SharedMemoryModemCommands producer(false);
    RawSegment segment(ringName);
    segment.write(0, ringWith(4093, {}).bytes());
    EXPECT_TRUE(enqueue(producer, 8, {'a', 'b'}));
    RingImage expected;
    expected.readIndex = 4093;
    expected.writeIndex = 7;
    expected.empty = 0;
    expected.put(4093, {8, 0, 0});
    expected.put(0, {0, 2, 0, 0, 0, 'a', 'b'});
    EXPECT_TRUE(holds(segment, expected));
}

TEST(SharedMemoryModemCommands, framesWrapAtEveryOffset) {
    SharedMemoryModemCommands producer(false);
    RawSegment segment(ringName);
    const Bytes payload = pattern(25);
    for (uint32_t start = 0; start < ringCapacity; ++start) {
        segment.write(0, ringWith(start, {}).bytes());
        EXPECT_TRUE(enqueue(producer, start, payload));
        ASSERT_TRUE(holds(segment, ringWith(start, frame(start, payload)))) << start;
    }
}

TEST(SharedMemoryModemCommands, aFrameLargerThanTheRoomLeftIsDropped) {
    const Bytes inUse = frame(1, pattern(4000 - headerSize));
    expectDropped(ringWith(0, inUse), pattern(100));
    expectDropped(ringWith(1000, inUse), pattern(100));
}

TEST(SharedMemoryModemCommands, aFrameOneByteTooLargeIsDropped) {
    expectDropped(ringWith(500, frame(1, pattern(4000 - headerSize))), pattern(89));
}

TEST(SharedMemoryModemCommands, aFrameThatFitsExactlyFillsTheRing) {
    SharedMemoryModemCommands producer(false);
    RawSegment segment(ringName);
    Bytes frames = frame(1, pattern(4000 - headerSize));
    segment.write(0, ringWith(500, frames).bytes());
    EXPECT_TRUE(enqueue(producer, 12, pattern(88)));
    const Bytes last = frame(12, pattern(88));
    frames.insert(frames.end(), last.begin(), last.end());
    RingImage expected = ringWith(500, frames);
    EXPECT_EQ(expected.readIndex, expected.writeIndex);
    EXPECT_EQ(expected.full, 1);
    EXPECT_TRUE(holds(segment, expected));
}

TEST(SharedMemoryModemCommands, nothingFitsIntoAFullRing) {
    expectDropped(ringWith(0, frame(1, pattern(largestPayload))), {});
    expectDropped(ringWith(77, frame(1, pattern(largestPayload))), pattern(1));
}

TEST(SharedMemoryModemCommands, theLargestFrameFillsAnEmptyRing) {
    SharedMemoryModemCommands producer(false);
    EXPECT_TRUE(enqueue(producer, 12, pattern(largestPayload)));
    EXPECT_TRUE(holds(RawSegment(ringName), ringWith(0, frame(12, pattern(largestPayload)))));
}

TEST(SharedMemoryModemCommands, aFrameLargerThanTheRingIsDropped) {
    expectDropped(RingImage(), pattern(largestPayload + 1));
    expectDropped(RingImage(), pattern(std::size_t{3} * ringCapacity));
}

TEST(SharedMemoryModemCommands, aRingThatIsNotSetUpTakesNothing) {
    for (const uint32_t initialized : {0U, 2U, 0x01000000U, UINT32_MAX}) {
        RingImage image;
        image.initialized = initialized;
        expectDropped(image, {1});
    }
}

TEST(SharedMemoryModemCommands, aNullPayloadWithASizeIsDropped) {
    SharedMemoryModemCommands producer(false);
    for (const uint32_t size : {1U, largestPayload, ringCapacity, UINT32_MAX}) {
        EXPECT_TRUE(producer.enqueue(5, nullptr, size));
        EXPECT_TRUE(holds(RawSegment(ringName), RingImage())) << size;
    }
}

TEST(SharedMemoryModemCommands, aSizeAtTheEndOfTheRangeNeitherWrapsNorAllocates) {
    SharedMemoryModemCommands producer(false);
    const unsigned char payload = 'x';
    const uint32_t sizes[] = {0xFFFFFFF7, 0xFFFFFFF8, 0xFFFFFFF9, 0xFFFFFFFA, 0xFFFFFFFB,
                              0xFFFFFFFC, 0xFFFFFFFD, 0xFFFFFFFE, 0xFFFFFFFF, 0x80000000};
    for (const uint32_t size : sizes) {
        const Allocations allocations;
        EXPECT_TRUE(producer.enqueue(5, &payload, size));
        EXPECT_LE(allocations.largestSize(), ringCapacity) << size;
        EXPECT_TRUE(holds(RawSegment(ringName), RingImage())) << size;
    }
}

TEST(SharedMemoryModemCommands, aFrameCostsOneAllocationOfItsSize) {
    SharedMemoryModemCommands producer(false);
    const Bytes payload = pattern(16);
    const Allocations allocations;
    EXPECT_TRUE(enqueue(producer, 5, payload));
    EXPECT_EQ(allocations.count(), 1U);
    EXPECT_EQ(allocations.largestSize(), 24U);
}

TEST(SharedMemoryModemCommands, runningOutOfMemoryLeavesRingAndLockAsTheyWere) {
    SharedMemoryModemCommands producer(false);
    const Bytes payload = pattern(16);
    {
        const Allocations failing(1);
        EXPECT_THROW(enqueue(producer, 5, payload), std::bad_alloc);
    }
    EXPECT_TRUE(holds(RawSegment(ringName), RingImage()));
    EXPECT_EQ(semaphoreValue(ringLockName), 1);
}

TEST(SharedMemoryModemCommands, enqueueingWaitsForTheLock) {
    SharedMemoryModemCommands producer(false);
    const RawSegment segment(ringName);
    RawSemaphore semaphore(ringLockName);
    ASSERT_TRUE(semaphore.tryTake());
    const BackgroundAction enqueueing([&] { producer.enqueue(5, nullptr, 0); });
    EXPECT_TRUE(enqueueing.blocks());
    EXPECT_TRUE(holds(segment, RingImage()));
    semaphore.post();
    EXPECT_TRUE(enqueueing.ends());
    EXPECT_TRUE(holds(segment, ringWith(0, frame(5))));
    EXPECT_EQ(semaphore.value(), 1);
}

TEST(SharedMemoryModemCommands, aSecondProducerDoesNotDiscardFrames) {
    SharedMemoryModemCommands first(false);
    enqueue(first, 5, {});
    SharedMemoryModemCommands second(false);
    enqueue(second, 6, {});
    RingImage expected = ringWith(0, {5, 0, 0, 0, 0, 0, 0, 0, 6, 0, 0, 0, 0, 0, 0, 0});
    expected.attached = 2;
    expected.producers = 2;
    EXPECT_TRUE(holds(RawSegment(ringName), expected));
}

TEST(SharedMemoryModemCommands, aProducerAfterAllProducersLeftDiscardsUnreadFrames) {
    SharedMemoryModemCommands consumer(true);
    {
        SharedMemoryModemCommands first(false);
        enqueue(first, 5, {});
    }
    SharedMemoryModemCommands second(false);
    RingImage expected;
    expected.attached = 2;
    expected.consumers = 1;
    expected.put(0, frame(5));
    EXPECT_TRUE(holds(RawSegment(ringName), expected));
    uint32_t command = 99;
    EXPECT_FALSE(consumer.dequeue(command, nullptr, nullptr));
}

TEST(SharedMemoryModemCommands, aReconnectOfTheClientKeepsUnreadFrames) {
    ModemClient client;
    ASSERT_TRUE(client.connect());
    ASSERT_TRUE(client.sendTextCommand("hi"));
    ASSERT_TRUE(client.connect());
    EXPECT_TRUE(holds(RawSegment(ringName), ringWith(0, frame(12, {'h', 'i'}))));
}

TEST(SharedMemoryModemCommands, aReplacementAttachedFirstIsCountedUntilTheOldChannelLeaves) {
    auto channel = std::make_unique<SharedMemoryModemCommands>(false);
    enqueue(*channel, 5, {});
    auto replacement = std::make_unique<SharedMemoryModemCommands>(false);
    RingImage expected = ringWith(0, frame(5));
    expected.attached = 2;
    expected.producers = 2;
    EXPECT_TRUE(holds(RawSegment(ringName), expected));
    channel = std::move(replacement);
    expected.attached = 1;
    expected.producers = 1;
    EXPECT_TRUE(holds(RawSegment(ringName), expected));
}

TEST(SharedMemoryModemCommands, passesOnAFailedMapping) {
    ASSERT_EQ(mkdir(segmentPath(ringName).c_str(), 0777), 0);
    EXPECT_THROW(SharedMemoryModemCommands(true), std::runtime_error);
}

}  // namespace
}  // namespace vantric_test
