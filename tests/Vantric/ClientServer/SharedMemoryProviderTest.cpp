#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>

#include "Vantric/ClientServer/SharedMemoryProvider.h"
#include "tests/support/ProcessFacts.h"
#include "tests/support/RawSegment.h"
#include "tests/support/RawSemaphore.h"
#include "tests/support/Roles.h"

namespace vantric_test {
namespace {

using com_qel::Orvane::Vantric::ClientServer::SharedMemoryProvider;

static_assert(sizeof(SharedMemoryProvider) == sizeof(void*));

constexpr const char* name = "TestSegment";
constexpr const char* lockName = "TestSegmentProviderLock";
constexpr uint32_t size = 61;
constexpr std::size_t length = size + 4;

// Leaves a segment with this attach count behind, its payload filled with 0xA5.
void leaveSegment(uint32_t attachCount, std::size_t objectLength = length) {
    RawSegment segment(name, objectLength);
    segment.write(0, Bytes(objectLength, 0xA5));
    segment.writeWord(0, attachCount);
}

Bytes image(uint32_t attachCount, unsigned char filling, std::size_t payloadSize = size) {
    Bytes bytes;
    appendWord(bytes, attachCount);
    bytes.insert(bytes.end(), payloadSize, filling);
    return bytes;
}

// Attaches and dies without detaching. arguments: none
const RoleRegistration deserter("deserter", [](const std::vector<std::string>&) {
    SharedMemoryProvider provider;
    provider.map(size, name);
    std::_Exit(0);
    return 0;
});

TEST(SharedMemoryProvider, touchesNothingBeforeTheFirstMap) {
    SharedMemoryProvider provider;
    EXPECT_TRUE(std::filesystem::is_empty("/dev/shm"));
}

TEST(SharedMemoryProvider, createsAMissingObjectWithCountOneAndAZeroPayload) {
    SharedMemoryProvider provider;
    provider.map(size, name);
    EXPECT_EQ(RawSegment(name).bytes(), image(1, 0));
}

TEST(SharedMemoryProvider, returnsTheAlignedPayloadBehindTheCount) {
    SharedMemoryProvider provider;
    void* payload = provider.map(size, name);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(payload) % 4, 0U);
    std::memset(payload, 0x5A, size);
    EXPECT_EQ(RawSegment(name).bytes(), image(1, 0x5A));
}

TEST(SharedMemoryProvider, theFirstToAttachZeroesAnEarlierPayload) {
    leaveSegment(0);
    SharedMemoryProvider provider;
    provider.map(size, name);
    EXPECT_EQ(RawSegment(name).bytes(), image(1, 0));
}

TEST(SharedMemoryProvider, laterAttachmentsLeaveThePayloadUntouched) {
    leaveSegment(2);
    SharedMemoryProvider provider;
    provider.map(size, name);
    EXPECT_EQ(RawSegment(name).bytes(), image(3, 0xA5));
}

TEST(SharedMemoryProvider, removesTheObjectWhenTheLastUserDetaches) {
    {
        SharedMemoryProvider provider;
        provider.map(size, name);
    }
    EXPECT_FALSE(segmentExists(name));
}

TEST(SharedMemoryProvider, keepsTheObjectWhileOthersAreAttached) {
    leaveSegment(2);
    {
        SharedMemoryProvider provider;
        provider.map(size, name);
        ASSERT_EQ(RawSegment(name).word(0), 3U);
    }
    EXPECT_EQ(RawSegment(name).bytes(), image(2, 0xA5));
}

TEST(SharedMemoryProvider, removesTheObjectWhenAThirdPartyForcedTheCountToZero) {
    auto provider = std::make_unique<SharedMemoryProvider>();
    provider->map(size, name);
    RawSegment segment(name);
    segment.writeWord(0, 0);
    provider.reset();
    EXPECT_FALSE(segmentExists(name));
    EXPECT_EQ(segment.word(0), 0U);
}

TEST(SharedMemoryProvider, detachingLeavesThePayloadUntouched) {
    auto provider = std::make_unique<SharedMemoryProvider>();
    std::memset(provider->map(size, name), 0x5A, size);
    const RawSegment segment(name);
    provider.reset();
    EXPECT_EQ(segment.bytes(), image(0, 0x5A));
}

TEST(SharedMemoryProvider, theProviderLockOutlivesTheObject) {
    {
        SharedMemoryProvider provider;
        provider.map(size, name);
    }
    EXPECT_FALSE(segmentExists(name));
    EXPECT_EQ(semaphoreValue(lockName), 1);
}

TEST(SharedMemoryProvider, theCountOfAProcessThatDiedStaysAndKeepsObjectAndPayload) {
    const Result result = run(roleCommand("deserter"));
    ASSERT_TRUE(result.status.has_value());
    ASSERT_EQ(result.status->raw, 0);
    {
        SharedMemoryProvider provider;
        std::memset(provider.map(size, name), 0x5A, size);
        EXPECT_EQ(RawSegment(name).word(0), 2U);
    }
    {
        SharedMemoryProvider provider;
        provider.map(size, name);
        EXPECT_EQ(RawSegment(name).bytes(), image(2, 0x5A));
    }
    EXPECT_EQ(RawSegment(name).word(0), 1U);
}

TEST(SharedMemoryProvider, aReplacementAttachedFirstKeepsObjectAndPayload) {
    auto provider = std::make_unique<SharedMemoryProvider>();
    std::memset(provider->map(size, name), 0x5A, size);
    auto replacement = std::make_unique<SharedMemoryProvider>();
    replacement->map(size, name);
    EXPECT_EQ(RawSegment(name).word(0), 2U);
    provider.reset();
    EXPECT_EQ(RawSegment(name).bytes(), image(1, 0x5A));
}

TEST(SharedMemoryProvider, anExistingObjectGrowsToTheSizeAskedFor) {
    leaveSegment(1, 20);
    SharedMemoryProvider provider;
    provider.map(size, name);
    Bytes expected = image(2, 0xA5, 16);
    expected.resize(length, 0);
    EXPECT_EQ(RawSegment(name).bytes(), expected);
}

TEST(SharedMemoryProvider, anExistingObjectShrinksToTheSizeAskedFor) {
    leaveSegment(1, 9000);
    SharedMemoryProvider provider;
    provider.map(size, name);
    EXPECT_EQ(RawSegment(name).bytes(), image(2, 0xA5));
}

TEST(SharedMemoryProvider, anEmptyPayloadIsOnlyACount) {
    {
        SharedMemoryProvider provider;
        EXPECT_NE(provider.map(0, name), nullptr);
        EXPECT_EQ(RawSegment(name).bytes(), image(1, 0, 0));
    }
    EXPECT_FALSE(segmentExists(name));
}

TEST(SharedMemoryProvider, onlyTheOwnerMayOpenTheObject) {
    const mode_t previous = umask(0);
    SharedMemoryProvider provider;
    provider.map(size, name);
    umask(previous);
    EXPECT_EQ(segmentMode(name), 0600U);
}

TEST(SharedMemoryProvider, takesTheNameAsItStands) {
    const std::string oddName = "odd \x01 name,Shm";
    SharedMemoryProvider provider;
    provider.map(size, oddName);
    EXPECT_TRUE(segmentExists(oddName));
    EXPECT_TRUE(segmentExists(semaphoreObject(oddName + "ProviderLock")));
}

TEST(SharedMemoryProvider, keepsNoDescriptorOpen) {
    const std::size_t before = openDescriptorCount();
    SharedMemoryProvider provider;
    provider.map(size, name);
    EXPECT_EQ(openDescriptorCount(), before);
}

TEST(SharedMemoryProvider, destructionUndoesTheMappingAndClosesTheLock) {
    auto provider = std::make_unique<SharedMemoryProvider>();
    provider->map(size, name);
    const ino_t segment = segmentInode(name);
    const ino_t semaphore = segmentInode(semaphoreObject(lockName));
    EXPECT_TRUE(isMapped(segment));
    EXPECT_TRUE(isMapped(semaphore));
    provider.reset();
    EXPECT_FALSE(isMapped(segment));
    EXPECT_FALSE(isMapped(semaphore));
}

TEST(SharedMemoryProvider, twoMapsOfOneNameCountTwiceAndShareOneLock) {
    auto provider = std::make_unique<SharedMemoryProvider>();
    void* first = provider->map(size, name);
    std::memset(first, 0x5A, size);
    void* second = provider->map(size, name);
    EXPECT_NE(first, second);
    EXPECT_EQ(std::memcmp(first, second, size), 0);
    const RawSegment segment(name);
    EXPECT_EQ(segment.bytes(), image(2, 0x5A));
    EXPECT_EQ(semaphoreValue(lockName), 1);
    provider.reset();
    EXPECT_EQ(segment.word(0), 0U);
    EXPECT_FALSE(segmentExists(name));
}

TEST(SharedMemoryProvider, aSecondMapStillReleasesALockFoundHeld) {
    SharedMemoryProvider provider;
    provider.map(size, name);
    ASSERT_TRUE(RawSemaphore(lockName).tryTake());
    provider.map(size, name);
    EXPECT_EQ(RawSegment(name).word(0), 2U);
    EXPECT_EQ(semaphoreValue(lockName), 1);
}

TEST(SharedMemoryProvider, oneProviderMapsSeveralSegments) {
    auto provider = std::make_unique<SharedMemoryProvider>();
    std::memset(provider->map(size, "FirstSegment"), 1, size);
    std::memset(provider->map(30, "SecondSegment"), 2, 30);
    EXPECT_EQ(RawSegment("FirstSegment").bytes(), image(1, 1));
    EXPECT_EQ(RawSegment("SecondSegment").bytes(), image(1, 2, 30));
    provider.reset();
    EXPECT_FALSE(segmentExists("FirstSegment"));
    EXPECT_FALSE(segmentExists("SecondSegment"));
}

TEST(SharedMemoryProvider, detachesUnderTheProviderLock) {
    auto provider = std::make_unique<SharedMemoryProvider>();
    provider->map(size, name);
    const RawSegment segment(name);
    RawSemaphore semaphore(lockName);
    ASSERT_TRUE(semaphore.tryTake());
    const BackgroundAction detachment([&] { provider.reset(); });
    EXPECT_TRUE(detachment.blocks());
    EXPECT_EQ(segment.word(0), 1U);
    EXPECT_TRUE(segmentExists(name));
    semaphore.post();
    EXPECT_TRUE(detachment.ends());
    EXPECT_EQ(segment.word(0), 0U);
    EXPECT_EQ(semaphore.value(), 1);
}

TEST(SharedMemoryProvider, theLastToDetachRemovesTheNameWhicheverObjectBearsItThen) {
    auto provider = std::make_unique<SharedMemoryProvider>();
    provider->map(size, name);
    std::filesystem::remove(segmentPath(name));
    leaveSegment(7);
    provider.reset();
    EXPECT_FALSE(segmentExists(name));
}

TEST(SharedMemoryProvider, anEndlessCountWrapsWithoutHarm) {
    leaveSegment(UINT32_MAX);
    {
        SharedMemoryProvider provider;
        provider.map(size, name);
        EXPECT_EQ(RawSegment(name).bytes(), image(0, 0xA5));
    }
    EXPECT_FALSE(segmentExists(name));
}

}  // namespace
}  // namespace vantric_test
