#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "Vantric/ClientServer/SharedMemoryCircularBuffer.h"
#include "tests/Vantric/ClientServer/RingImage.h"
#include "tests/support/ProcessFacts.h"
#include "tests/support/RawSemaphore.h"
#include "tests/support/VirtualSlot.h"

namespace vantric_test {
namespace {

using com_qel::Orvane::Vantric::ClientServer::SharedMemoryCircularBuffer;

using Ring = SharedMemoryCircularBuffer<unsigned char, ringCapacity>;

constexpr bool asConsumer = true;
constexpr bool asProducer = false;

constexpr std::size_t producersOffset = 8;
constexpr std::size_t consumersOffset = 12;

class ExtendedRing : public Ring {
  public:
    ExtendedRing() : Ring(ringName, asProducer) {}
    virtual void firstAdded() {}
};

// A ring small enough to try every state of it.
constexpr uint32_t smallCapacity = 8;
using SmallRing = SharedMemoryCircularBuffer<unsigned char, smallCapacity>;
constexpr const char* smallName = "SmallRing";

// A ring's expected content: where it starts and what is unread.
struct Model {
    uint32_t readIndex;
    Bytes unread;

    uint32_t writeIndex() const {
        return (readIndex + static_cast<uint32_t>(unread.size())) % smallCapacity;
    }
};

void setUp(RawSegment& segment, const Model& model) {
    segment.writeWord(16, model.readIndex);
    segment.writeWord(20, model.writeIndex());
    const bool isFull = model.unread.size() == smallCapacity;
    segment.write(28, {static_cast<unsigned char>(isFull ? 1 : 0),
                       static_cast<unsigned char>(model.unread.empty() ? 1 : 0)});
    segment.write(30, Bytes(smallCapacity, 0xCC));
    for (std::size_t index = 0; index < model.unread.size(); ++index) {
        segment.write(30 + (model.readIndex + index) % smallCapacity, {model.unread[index]});
    }
}

void expectState(const RawSegment& segment, const Model& model) {
    EXPECT_EQ(segment.word(16), model.readIndex);
    EXPECT_EQ(segment.word(20), model.writeIndex());
    EXPECT_EQ(segment.bytes(28, 1)[0], model.unread.size() == smallCapacity ? 1 : 0);
    EXPECT_EQ(segment.bytes(29, 1)[0], model.unread.empty() ? 1 : 0);
    for (std::size_t index = 0; index < model.unread.size(); ++index) {
        EXPECT_EQ(segment.bytes(30 + (model.readIndex + index) % smallCapacity, 1)[0],
                  model.unread[index]);
    }
}

// Calls `check` for every place to start at, every fill and every run of up to one byte too many.
template <class Check>
void forEveryState(Check check) {
    for (uint32_t readIndex = 0; readIndex < smallCapacity; ++readIndex) {
        for (uint32_t used = 0; used <= smallCapacity; ++used) {
            for (uint32_t count = 1; count <= smallCapacity + 1; ++count) {
                SCOPED_TRACE(testing::Message() << "read index " << readIndex << ", " << used
                                                << " in use, run of " << count);
                check(Model{readIndex, pattern(used)}, count);
            }
        }
    }
}

TEST(SharedMemoryCircularBuffer, theFirstProducerSetsTheRingUp) {
    const Ring producer(ringName, asProducer);
    EXPECT_TRUE(holds(RawSegment(ringName), RingImage()));
    EXPECT_EQ(sizeof(Ring::Memory), 4124U);
    EXPECT_EQ(segmentLength(ringName), 4128U);
}

TEST(SharedMemoryCircularBuffer, aConsumerAloneSetsNothingUp) {
    const Ring consumer(ringName, asConsumer);
    RingImage expected;
    expected.initialized = 0;
    expected.producers = 0;
    expected.consumers = 1;
    expected.capacity = 0;
    expected.empty = 0;
    EXPECT_TRUE(holds(RawSegment(ringName), expected));
}

TEST(SharedMemoryCircularBuffer, producersAndConsumersAreCountedApart) {
    const Ring firstProducer(ringName, asProducer);
    const Ring firstConsumer(ringName, asConsumer);
    auto secondProducer = std::make_unique<Ring>(ringName, asProducer);
    auto secondConsumer = std::make_unique<Ring>(ringName, asConsumer);
    const Ring thirdProducer(ringName, asProducer);
    const RawSegment segment(ringName);
    RingImage expected;
    expected.attached = 5;
    expected.producers = 3;
    expected.consumers = 2;
    EXPECT_TRUE(holds(segment, expected));
    secondProducer.reset();
    expected.attached = 4;
    expected.producers = 2;
    EXPECT_TRUE(holds(segment, expected));
    secondConsumer.reset();
    expected.attached = 3;
    expected.consumers = 1;
    EXPECT_TRUE(holds(segment, expected));
}

TEST(SharedMemoryCircularBuffer, aSecondProducerDoesNotResetTheRing) {
    Ring first(ringName, asProducer);
    ASSERT_TRUE(first.write(pattern(20).data(), 20));
    const Ring second(ringName, asProducer);
    RingImage expected;
    expected.attached = 2;
    expected.producers = 2;
    expected.writeIndex = 20;
    expected.empty = 0;
    expected.put(0, pattern(20));
    EXPECT_TRUE(holds(RawSegment(ringName), expected));
}

TEST(SharedMemoryCircularBuffer, detachingLeavesRingAndContentsAsTheyAre) {
    const Ring consumer(ringName, asConsumer);
    {
        Ring producer(ringName, asProducer);
        ASSERT_TRUE(producer.write(pattern(20).data(), 20));
    }
    RingImage expected;
    expected.producers = 0;
    expected.consumers = 1;
    expected.writeIndex = 20;
    expected.empty = 0;
    expected.put(0, pattern(20));
    EXPECT_TRUE(holds(RawSegment(ringName), expected));
}

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

TEST(SharedMemoryCircularBuffer, aRoleCountForcedToZeroStaysZero) {
    auto producer = std::make_unique<Ring>(ringName, asProducer);
    auto consumer = std::make_unique<Ring>(ringName, asConsumer);
    RawSegment segment(ringName);
    segment.writeWord(producersOffset, 0);
    segment.writeWord(consumersOffset, 0);
    producer.reset();
    EXPECT_EQ(segment.word(producersOffset), 0U);
    consumer.reset();
    EXPECT_EQ(segment.word(consumersOffset), 0U);
}

TEST(SharedMemoryCircularBuffer, theLastToLeaveRemovesTheObject) {
    {
        const Ring producer(ringName, asProducer);
        const Ring consumer(ringName, asConsumer);
    }
    EXPECT_FALSE(segmentExists(ringName));
}

TEST(SharedMemoryCircularBuffer, detachesItsRoleUnderTheContentsLock) {
    auto producer = std::make_unique<Ring>(ringName, asProducer);
    const RawSegment segment(ringName);
    RawSemaphore semaphore(ringLockName);
    ASSERT_TRUE(semaphore.tryTake());
    const BackgroundAction detachment([&] { producer.reset(); });
    EXPECT_TRUE(detachment.blocks());
    EXPECT_TRUE(holds(segment, RingImage()));
    semaphore.post();
    EXPECT_TRUE(detachment.ends());
    EXPECT_EQ(segment.word(producersOffset), 0U);
    EXPECT_EQ(semaphore.value(), 1);
}

TEST(SharedMemoryCircularBuffer, everyOperationReleasesTheContentsLock) {
    Ring ring(ringName, asProducer);
    EXPECT_EQ(semaphoreValue(ringLockName), 1);
    unsigned char byte = 1;
    EXPECT_FALSE(ring.read(&byte, 1));
    EXPECT_EQ(semaphoreValue(ringLockName), 1);
    EXPECT_TRUE(ring.write(&byte, 1));
    EXPECT_EQ(semaphoreValue(ringLockName), 1);
    EXPECT_TRUE(ring.read(&byte, 1));
    EXPECT_EQ(semaphoreValue(ringLockName), 1);
    EXPECT_FALSE(ring.write(pattern(ringCapacity + 1).data(), ringCapacity + 1));
    EXPECT_EQ(semaphoreValue(ringLockName), 1);
}

TEST(SharedMemoryCircularBuffer, writesInEveryStateWhatFitsAndNothingElse) {
    SmallRing ring(smallName, asProducer);
    RawSegment segment(smallName);
    const Bytes run = {91, 92, 93, 94, 95, 96, 97, 98, 99};
    forEveryState([&](Model model, uint32_t count) {
        setUp(segment, model);
        const Bytes before = segment.bytes();
        const bool fits = model.unread.size() + count <= smallCapacity;
        EXPECT_EQ(ring.write(run.data(), count), fits);
        if (fits) {
            model.unread.insert(model.unread.end(), run.begin(), run.begin() + count);
            expectState(segment, model);
        } else {
            EXPECT_EQ(segment.bytes(), before);
        }
    });
}

TEST(SharedMemoryCircularBuffer, readsInEveryStateWhatIsThereAndNothingElse) {
    SmallRing ring(smallName, asProducer);
    RawSegment segment(smallName);
    forEveryState([&](Model model, uint32_t count) {
        setUp(segment, model);
        const Bytes before = segment.bytes();
        Bytes run(smallCapacity + 1, 0xEE);
        const bool isThere = count <= model.unread.size();
        EXPECT_EQ(ring.read(run.data(), count), isThere);
        Bytes expected(smallCapacity + 1, 0xEE);
        if (isThere) {
            std::copy_n(model.unread.begin(), count, expected.begin());
            model.readIndex = (model.readIndex + count) % smallCapacity;
            model.unread.erase(model.unread.begin(), model.unread.begin() + count);
            expectState(segment, model);
        } else {
            EXPECT_EQ(segment.bytes(), before);
        }
        EXPECT_EQ(run, expected);
    });
}

TEST(SharedMemoryCircularBuffer, elementsWiderThanAByteMoveWhole) {
    SharedMemoryCircularBuffer<uint16_t, 3> ring("WideRing", asProducer);
    const uint16_t written[] = {0x1122, 0x3344, 0x5566};
    uint16_t taken[2] = {};
    ASSERT_TRUE(ring.write(written, 2));
    ASSERT_TRUE(ring.read(taken, 2));
    ASSERT_TRUE(ring.write(written + 1, 2));
    EXPECT_EQ(RawSegment("WideRing").bytes(30, 6), (Bytes{0x66, 0x55, 0x44, 0x33, 0x44, 0x33}));
    ASSERT_TRUE(ring.read(taken, 2));
    EXPECT_EQ(taken[0], 0x3344);
    EXPECT_EQ(taken[1], 0x5566);
}

TEST(SharedMemoryCircularBuffer, aFailedMappingLeavesEveryCountUntouched) {
    ASSERT_EQ(mkdir(segmentPath(ringName).c_str(), 0777), 0);
    EXPECT_THROW(Ring(ringName, asProducer), std::runtime_error);
    EXPECT_FALSE(segmentExists(semaphoreObject("ModemCommandsShmProviderLock")));
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
