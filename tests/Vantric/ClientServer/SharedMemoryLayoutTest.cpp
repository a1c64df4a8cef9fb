#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <memory>

#include "Vantric/ClientServer/SharedMemoryLayout.h"
#include "Vantric/ClientServer/SharedMemoryProvider.h"
#include "tests/Vantric/ClientServer/RecordingProvider.h"
#include "tests/support/Allocations.h"
#include "tests/support/ProcessFacts.h"
#include "tests/support/RawSegment.h"
#include "tests/support/RawSemaphore.h"
#include "tests/support/Roles.h"
#include "tests/support/VirtualSlot.h"

namespace vantric_test {
namespace {

using com_qel::Orvane::Vantric::ClientServer::SharedMemoryLayout;
using com_qel::Orvane::Vantric::ClientServer::SharedMemoryProvider;

struct Record {
    unsigned char bytes[7];
};

constexpr const char* name = "TestState";
constexpr const char* lockName = "TestStateLock";
constexpr std::size_t versionOffset = 4;
constexpr std::size_t validOffset = 8;
constexpr std::size_t reservedOffset = 9;
constexpr std::size_t recordOffset = 12;
constexpr Record sample = {{10, 20, 30, 40, 50, 60, 70}};

using Segment = SharedMemoryLayout<Record, SharedMemoryProvider>;

// Looks at the lock whenever it is asked, and adds a slot.
class CuriousLayout : public Segment {
  public:
    CuriousLayout() : Segment(name, 1) {}

    bool isCompatibleVersion(uint32_t version) override {
        askedFor = version;
        lockValueWhenAsked = semaphoreValue(lockName);
        return isCompatible;
    }

    virtual void firstAdded() {}

    uint32_t askedFor = 0;
    int lockValueWhenAsked = -1;
    bool isCompatible = true;
};

// A record all of whose bytes are the same shows a torn copy.
struct LargeRecord {
    unsigned char bytes[4108];
};

using LargeLayout = SharedMemoryLayout<LargeRecord, SharedMemoryProvider>;

bool isTorn(const LargeRecord& record) {
    return std::memcmp(record.bytes, record.bytes + 1, sizeof(record.bytes) - 1) != 0;
}

// Publishes changing records until it is killed. arguments: none
const RoleRegistration publisher("publisher", [](const std::vector<std::string>&) {
    LargeLayout layout("LargeState", 1);
    LargeRecord record = {};
    std::puts("attached");
    std::fflush(stdout);
    for (unsigned char filling = 1; true; ++filling) {
        std::memset(record.bytes, filling, sizeof(record.bytes));
        layout.publish(record);
    }
    return 0;
});

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
    Segment layout(name, 1);
    RawSegment segment(name);
    segment.write(recordOffset, bytesOf(sample));
    writeHeader(segment, version, valid);
    Bytes record;
    EXPECT_FALSE(read(layout, record));
    EXPECT_EQ(record, Bytes(7, 0));
    EXPECT_EQ(semaphoreValue(lockName), 1);
}

TEST(SharedMemoryLayout, theObjectHoldsCountHeaderAndRecordWithoutPadding) {
    const Segment layout(name, 1);
    EXPECT_EQ(segmentLength(name), 4U + 8U + 7U);
    EXPECT_EQ(sizeof(Segment::Layout), 15U);
}

TEST(SharedMemoryLayout, aFreshSegmentIsAllZeroAndHasNothingToRead) {
    Segment layout(name, 1);
    EXPECT_EQ(RawSegment(name).bytes(4, 15), Bytes(15, 0));
    Bytes record;
    EXPECT_FALSE(read(layout, record));
    EXPECT_EQ(record, Bytes(7, 0));
}

TEST(SharedMemoryLayout, readsThePublishedRecord) {
    Segment layout(name, 1);
    RawSegment segment(name);
    segment.write(recordOffset, bytesOf(sample));
    writeHeader(segment, 1, 1);
    Bytes record;
    EXPECT_TRUE(read(layout, record));
    EXPECT_EQ(record, bytesOf(sample));
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

TEST(SharedMemoryLayout, theReservedBytesDoNotMatter) {
    Segment layout(name, 1);
    layout.publish(sample);
    RawSegment(name).write(reservedOffset, {1, 2, 3});
    Bytes record;
    EXPECT_TRUE(read(layout, record));
    EXPECT_EQ(record, bytesOf(sample));
}

TEST(SharedMemoryLayout, readingChangesNothing) {
    Segment layout(name, 1);
    layout.publish(sample);
    RawSegment segment(name);
    segment.write(reservedOffset, {1, 2, 3});
    const Bytes before = segment.bytes();
    Bytes record;
    read(layout, record);
    EXPECT_EQ(segment.bytes(), before);
}

TEST(SharedMemoryLayout, publishWritesRecordVersionAndValidMarkOnly) {
    Segment layout(name, 1);
    RawSegment segment(name);
    segment.write(reservedOffset, {7, 8, 9});
    layout.publish(sample);
    EXPECT_EQ(segment.bytes(),
              (Bytes{1, 0, 0, 0, 1, 0, 0, 0, 1, 7, 8, 9, 10, 20, 30, 40, 50, 60, 70}));
}

TEST(SharedMemoryLayout, publishesAndReadsUnderItsOwnVersion) {
    Segment layout(name, 3);
    layout.publish(sample);
    EXPECT_EQ(RawSegment(name).word(versionOffset), 3U);
    Bytes record;
    EXPECT_TRUE(read(layout, record));
    EXPECT_TRUE(layout.isCompatibleVersion(3));
    EXPECT_FALSE(layout.isCompatibleVersion(1));
}

TEST(SharedMemoryLayout, readingAsksTheVirtualOperationWhileItHoldsTheLock) {
    CuriousLayout layout;
    RawSegment segment(name);
    segment.write(recordOffset, bytesOf(sample));
    writeHeader(segment, 77, 1);
    Bytes record;
    EXPECT_TRUE(read(layout, record));
    EXPECT_EQ(record, bytesOf(sample));
    EXPECT_EQ(layout.askedFor, 77U);
    EXPECT_EQ(layout.lockValueWhenAsked, 0);
    EXPECT_EQ(semaphoreValue(lockName), 1);
}

TEST(SharedMemoryLayout, aVersionThatADerivedClassRefusesIsNotRead) {
    CuriousLayout layout;
    layout.publish(sample);
    layout.isCompatible = false;
    Bytes record;
    EXPECT_FALSE(read(layout, record));
    EXPECT_EQ(record, Bytes(7, 0));
}

TEST(SharedMemoryLayout, readingWaitsForTheLock) {
    Segment layout(name, 1);
    layout.publish(sample);
    RawSemaphore semaphore(lockName);
    ASSERT_TRUE(semaphore.tryTake());
    Bytes record;
    bool isRead = false;
    const BackgroundAction reading([&] { isRead = read(layout, record); });
    EXPECT_TRUE(reading.blocks());
    RawSegment(name).write(recordOffset, {11});
    semaphore.post();
    EXPECT_TRUE(reading.ends());
    EXPECT_TRUE(isRead);
    EXPECT_EQ(record, (Bytes{11, 20, 30, 40, 50, 60, 70}));
    EXPECT_EQ(semaphore.value(), 1);
}

TEST(SharedMemoryLayout, publishingWaitsForTheLock) {
    Segment layout(name, 1);
    RawSemaphore semaphore(lockName);
    ASSERT_TRUE(semaphore.tryTake());
    const BackgroundAction publishing([&] { layout.publish(sample); });
    EXPECT_TRUE(publishing.blocks());
    EXPECT_EQ(RawSegment(name).bytes(4, 15), Bytes(15, 0));
    semaphore.post();
    EXPECT_TRUE(publishing.ends());
    EXPECT_EQ(RawSegment(name).bytes(recordOffset, 7), bytesOf(sample));
    EXPECT_EQ(semaphore.value(), 1);
}

TEST(SharedMemoryLayout, readingAndPublishingAllocateNothing) {
    Segment layout(name, 1);
    Record record = {};
    const Allocations allocations;
    layout.publish(sample);
    EXPECT_TRUE(layout.read(record));
    EXPECT_EQ(allocations.count(), 0U);
}

TEST(SharedMemoryLayout, copiesAreNeverTornWhileAnotherProcessPublishes) {
    // Constructing a lock releases it, so nobody may be inside while the other side attaches.
    LargeLayout layout("LargeState", 1);
    ChildProcess child(roleCommand("publisher"));
    ASSERT_TRUE(child.waitForOutput("attached"));
    LargeRecord record = {};
    int changes = 0;
    unsigned char previous = 0;
    EXPECT_TRUE(eventually([&] {
        for (int reading = 0; reading < 1000; ++reading) {
            if (layout.read(record)) {
                EXPECT_FALSE(isTorn(record));
                changes += record.bytes[0] != previous ? 1 : 0;
                previous = record.bytes[0];
            }
        }
        return changes >= 100 || testing::Test::HasFailure();
    }));
}

TEST(SharedMemoryLayout, aReplacementAttachedFirstKeepsTheRecord) {
    auto layout = std::make_unique<Segment>(name, 1);
    layout->publish(sample);
    auto replacement = std::make_unique<Segment>(name, 1);
    EXPECT_EQ(RawSegment(name).word(0), 2U);
    layout = std::move(replacement);
    EXPECT_EQ(RawSegment(name).word(0), 1U);
    Bytes record;
    EXPECT_TRUE(read(*layout, record));
    EXPECT_EQ(record, bytesOf(sample));
}

TEST(SharedMemoryLayout, passesOnWhatMapThrows) {
    using RecordingLayout = SharedMemoryLayout<Record, RecordingProvider>;
    RecordingProvider::failsNext() = true;
    EXPECT_THROW(RecordingLayout(RecordingProvider::segmentName, 1), std::runtime_error);
}

TEST(SharedMemoryLayout, theVersionComesFirstInTheObjectAndThenTheAccessor) {
    Segment layout(name, 0x1234);
    uint32_t version = 0;
    std::memcpy(&version, reinterpret_cast<unsigned char*>(&layout) + sizeof(void*),
                sizeof(version));
    EXPECT_EQ(version, 0x1234U);
    const void* accessor = &layout.accessor();
    EXPECT_EQ(accessor, reinterpret_cast<unsigned char*>(&layout) + 2 * sizeof(void*));
}

TEST(SharedMemoryLayout, slotZeroDestroysSlotOneFreesAndSlotTwoComparesVersions) {
    alignas(Segment) unsigned char storage[sizeof(Segment)];
    void* object = new (storage) Segment(name, 1);
    callVirtualSlot(object, 0);
    EXPECT_FALSE(segmentExists(name));
    object = new Segment(name, 1);
    callVirtualSlot(object, 1);  // the leak checker sees that it freed, too
    EXPECT_FALSE(segmentExists(name));
    EXPECT_EQ(virtualSlot(&Segment::isCompatibleVersion), 2U);
    EXPECT_EQ(virtualSlot(&CuriousLayout::isCompatibleVersion), 2U);
}

TEST(SharedMemoryLayout, hasNoFurtherVirtualOperation) {
    EXPECT_EQ(virtualSlot(&CuriousLayout::firstAdded), 3U);
}

}  // namespace
}  // namespace vantric_test
