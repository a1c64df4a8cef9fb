#include <gtest/gtest.h>

#include <new>

#include "Vantric/ClientServer/SharedMemoryCircularBuffer.h"
#include "tests/Vantric/ClientServer/RingImage.h"
#include "tests/support/SemaphoreCalls.h"
#include "tests/support/VirtualSlot.h"

namespace vantric_test {
namespace {

using com_qel::Orvane::Vantric::ClientServer::SharedMemoryCircularBuffer;

using Ring = SharedMemoryCircularBuffer<unsigned char, ringCapacity>;

constexpr bool asConsumer = true;
constexpr bool asProducer = false;

class ExtendedRing : public Ring {
  public:
    ExtendedRing() : Ring(ringName, asProducer) {}
    virtual void firstAdded() {}
};

TEST(SharedMemoryCircularBuffer, aProducerThatComesWhileNoneIsAttachedResetsIndicesButNotData) {
    const Ring consumer(ringName, asConsumer);
    RawSegment segment(ringName);
    { const Ring producer(ringName, asProducer); }
    RingImage left;
    left.producers = 0;
    left.consumers = 1;
    left.initialized = 9;
    left.readIndex = 77;
    left.writeIndex = 77;
    left.capacity = 50;
    left.full = 1;
    left.empty = 0;
    left.put(4000, pattern(200));
    segment.write(0, left.bytes());

    const Ring producer(ringName, asProducer);
    RingImage expected;
    expected.attached = 2;
    expected.consumers = 1;
    expected.put(4000, pattern(200));
    EXPECT_TRUE(holds(segment, expected));
}

TEST(SharedMemoryCircularBuffer, attachesItsRoleUnderTheContentsLock) {
    const Ring producer(ringName, asProducer);
    const Ring consumer(ringName, asConsumer);
    const RawSegment segment(ringName);
    for (const bool role : {asProducer, asConsumer}) {
        const std::size_t offset = role == asConsumer ? 12 : 8;
        uint32_t whenTaken = 0;
        uint32_t whenReleased = 0;
        observeSemaphoreCalls([&](SemaphoreMoment moment, const sem_t*) {
            if (moment == SemaphoreMoment::Taken) {
                whenTaken = segment.word(offset);
            } else if (moment == SemaphoreMoment::AboutToPost) {
                whenReleased = segment.word(offset);
            }
        });
        const Ring attached(ringName, role);
        observeSemaphoreCalls(nullptr);
        EXPECT_EQ(whenTaken, 1U);
        EXPECT_EQ(whenReleased, 2U);
    }
}

TEST(SharedMemoryCircularBuffer, elementsWiderThanAByteMoveWhole) {
    SharedMemoryCircularBuffer<uint16_t, 3> ring("WideRing", asProducer);
    const uint16_t written[] = {0x1122, 0x3344, 0x5566};
    uint16_t taken[2] = {};
    ASSERT_TRUE(ring.push(written, 2));
    ASSERT_TRUE(ring.pop(taken, 2));
    ASSERT_TRUE(ring.push(written + 1, 2));
    EXPECT_EQ(RawSegment("WideRing").bytes(30, 6), (Bytes{0x66, 0x55, 0x44, 0x33, 0x44, 0x33}));
    ASSERT_TRUE(ring.pop(taken, 2));
    EXPECT_EQ(taken[0], 0x3344);
    EXPECT_EQ(taken[1], 0x5566);
}

TEST(SharedMemoryCircularBuffer, slotZeroDestroysSlotOneFreesAndThereIsNoOther) {
    alignas(Ring) unsigned char storage[sizeof(Ring)];
    void* object = new (storage) Ring(ringName, asProducer);
    callVirtualSlot(object, 0);
    EXPECT_FALSE(segmentExists(ringName));
    object = new Ring(ringName, asProducer);
    callVirtualSlot(object, 1);  // the leak checker sees that it freed, too
    EXPECT_FALSE(segmentExists(ringName));
    EXPECT_EQ(virtualSlot(&ExtendedRing::firstAdded), 2U);
}

TEST(SharedMemoryCircularBuffer, theAccessorComesFirstInTheObjectAndThenTheRole) {
    Ring consumer(ringName, asConsumer);
    auto* const object = reinterpret_cast<unsigned char*>(&consumer);
    const void* accessor = &consumer.accessor();
    EXPECT_EQ(accessor, object + sizeof(void*));
    EXPECT_EQ(object[sizeof(void*) + sizeof(Ring::Accessor)], 1);
}

}  // namespace
}  // namespace vantric_test
