#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>

#include "Vantric/ClientServer/SharedMemoryLayout.h"
#include "Vantric/ClientServer/SharedMemoryProvider.h"
#include "tests/Vantric/ClientServer/WaitingOperation.h"
#include "tests/support/Allocations.h"
#include "tests/support/RawSegment.h"
#include "tests/support/RawSemaphore.h"
#include "tests/support/SemaphoreCalls.h"
#include "tests/support/VirtualSlot.h"

namespace vantric_test {
namespace {

using namespace com_qel::Orvane::Vantric::ClientServer;

struct Record {
    unsigned char bytes[7];
};

constexpr const char* layoutName = "TestState";
constexpr const char* layoutLock = "TestStateLock";
constexpr std::size_t versionOffset = 4;
constexpr std::size_t validOffset = 8;
constexpr std::size_t reservedOffset = 9;
constexpr std::size_t recordOffset = 12;
constexpr Record sample = {{10, 20, 30, 40, 50, 60, 70}};

using Segment = SharedMemoryLayout<Record, SharedMemoryProvider>;

// Looks at the lock whenever it is asked, and adds a slot.
class CuriousLayout : public Segment {
  public:
    CuriousLayout() : Segment(layoutName, 1) {}

    bool isCompatibleVersion(uint32_t version) override {
        askedFor = version;
        lockValueWhenAsked = semaphoreValue(layoutLock);
        if (throws) {
            throw std::runtime_error("no answer");
        }
        return isCompatible;
    }

    virtual void firstAdded() {}

    uint32_t askedFor = 0;
    int lockValueWhenAsked = -1;
    bool isCompatible = true;
    bool throws = false;
};

void writeHeader(RawSegment& segment, uint32_t version, unsigned char valid) {
    segment.writeWord(versionOffset, version);
    segment.write(validOffset, {valid});
}

Bytes bytesOf(const Record& record) {
    return Bytes(record.bytes, record.bytes + sizeof(record.bytes));
}

// Reads into a record full of other bytes, so that what read() leaves untouched shows.
bool read(Segment& layout, Bytes& bytes) {
    Record record = {};
    std::memset(record.bytes, 0xEE, sizeof(record.bytes));
    const bool isRead = layout.read(record);
    bytes = bytesOf(record);
    return isRead;
}

void expectNothingToRead(uint32_t version, unsigned char valid) {
    Segment layout(layoutName, 1);
    RawSegment segment(layoutName);
    segment.write(recordOffset, bytesOf(sample));
    writeHeader(segment, version, valid);
    Bytes record;
    EXPECT_FALSE(read(layout, record));
    EXPECT_EQ(record, Bytes(7, 0));
    EXPECT_EQ(semaphoreValue(layoutLock), 1);
}

TEST(SharedMemoryLayout, anotherVersionIsNotRead) {
    expectNothingToRead(2, 1);
    expectNothingToRead(0, 1);
    expectNothingToRead(0x01000000, 1);
    expectNothingToRead(0x00000101, 1);
}

TEST(SharedMemoryLayout, anyOtherValidMarkIsNotRead) {
    for (unsigned int valid = 0; valid <= 255; ++valid) {
        if (valid != 1) {
            expectNothingToRead(1, static_cast<unsigned char>(valid));
        }
    }
}

TEST(SharedMemoryLayout, publishWritesRecordVersionAndValidMarkOnly) {
    Segment layout(layoutName, 1);
    RawSegment segment(layoutName);
    segment.write(reservedOffset, {7, 8, 9});
    layout.publish(sample);
    EXPECT_EQ(segment.bytes(),
              (Bytes{1, 0, 0, 0, 1, 0, 0, 0, 1, 7, 8, 9, 10, 20, 30, 40, 50, 60, 70}));
}

TEST(SharedMemoryLayout, publishesAndReadsUnderItsOwnVersion) {
    Segment layout(layoutName, 3);
    layout.publish(sample);
    EXPECT_EQ(RawSegment(layoutName).word(versionOffset), 3U);
    Bytes record;
    EXPECT_TRUE(read(layout, record));
    EXPECT_TRUE(layout.isCompatibleVersion(3));
    EXPECT_FALSE(layout.isCompatibleVersion(1));
}

TEST(SharedMemoryLayout, readingAsksTheVirtualOperationWhileItHoldsTheLock) {
    CuriousLayout layout;
    RawSegment segment(layoutName);
    segment.write(recordOffset, bytesOf(sample));
    writeHeader(segment, 77, 1);
    Bytes record;
    EXPECT_TRUE(read(layout, record));
    EXPECT_EQ(record, bytesOf(sample));
    EXPECT_EQ(layout.askedFor, 77U);
    EXPECT_EQ(layout.lockValueWhenAsked, 0);
    EXPECT_EQ(semaphoreValue(layoutLock), 1);
    layout.isCompatible = false;
    EXPECT_FALSE(read(layout, record));
    EXPECT_EQ(record, Bytes(7, 0));
}

TEST(SharedMemoryLayout, anExceptionOutOfTheVirtualOperationLeavesZerosAndAFreeLock) {
    CuriousLayout layout;
    layout.publish(sample);
    layout.throws = true;
    Record record = sample;
    EXPECT_THROW(layout.read(record), std::runtime_error);
    EXPECT_EQ(bytesOf(record), Bytes(7, 0));
    EXPECT_EQ(semaphoreValue(layoutLock), 1);
}

TEST(SharedMemoryLayout, aFailedReadZeroesTheResultWhenTheLockIsFreeAgain) {
    Segment layout(layoutName, 1);
    Record record = sample;
    Bytes whenReleased;
    observeSemaphoreCalls([&](SemaphoreMoment moment, const sem_t*) {
        if (moment == SemaphoreMoment::AboutToPost) {
            whenReleased = bytesOf(record);
        }
    });
    EXPECT_FALSE(layout.read(record));
    observeSemaphoreCalls(nullptr);
    EXPECT_EQ(whenReleased, bytesOf(sample));
    EXPECT_EQ(bytesOf(record), Bytes(7, 0));
}

TEST(SharedMemoryLayout, publishingAndReadingWaitForTheLock) {
    Segment layout(layoutName, 1);
    Bytes record;
    expectToWaitFor(layoutLock, layoutName, [&] { layout.publish(sample); });
    expectToWaitFor(layoutLock, layoutName, [&] { read(layout, record); });
    EXPECT_EQ(record, bytesOf(sample));
}

TEST(SharedMemoryLayout, readingAndPublishingAllocateNothing) {
    Segment layout(layoutName, 1);
    Record record = {};
    const Allocations allocations;
    layout.publish(sample);
    EXPECT_TRUE(layout.read(record));
    EXPECT_EQ(allocations.count(), 0U);
}

TEST(SharedMemoryLayout, theVersionComesFirstInTheObjectAndThenTheAccessor) {
    Segment layout(layoutName, 0x1234);
    uint32_t version = 0;
    std::memcpy(&version, reinterpret_cast<unsigned char*>(&layout) + sizeof(void*),
                sizeof(version));
    EXPECT_EQ(version, 0x1234U);
    const void* accessor = &layout.accessor();
    EXPECT_EQ(accessor, reinterpret_cast<unsigned char*>(&layout) + 2 * sizeof(void*));
}

TEST(SharedMemoryLayout, slotZeroDestroysSlotOneFreesSlotTwoComparesVersionsAndThereIsNoOther) {
    alignas(Segment) unsigned char storage[sizeof(Segment)];
    void* object = new (storage) Segment(layoutName, 1);
    callVirtualSlot(object, 0);
    EXPECT_FALSE(segmentExists(layoutName));
    object = new Segment(layoutName, 1);
    callVirtualSlot(object, 1);  // the leak checker sees that it freed, too
    EXPECT_FALSE(segmentExists(layoutName));
    EXPECT_EQ(virtualSlot(&Segment::isCompatibleVersion), 2U);
    EXPECT_EQ(virtualSlot(&CuriousLayout::isCompatibleVersion), 2U);
    EXPECT_EQ(virtualSlot(&CuriousLayout::firstAdded), 3U);
}

}  // namespace
}  // namespace vantric_test
