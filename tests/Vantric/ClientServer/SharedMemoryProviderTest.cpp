#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <memory>

#include "Vantric/ClientServer/SharedMemoryProvider.h"
#include "tests/Vantric/ClientServer/WaitingOperation.h"
#include "tests/support/SemaphoreCalls.h"

namespace vantric_test {
namespace {

using com_qel::Orvane::Vantric::ClientServer::SharedMemoryProvider;

static_assert(sizeof(SharedMemoryProvider) == sizeof(void*));

constexpr const char* providedName = "TestSegment";
constexpr const char* providerLock = "TestSegmentProviderLock";
constexpr uint32_t recordSize = 61;
constexpr std::size_t length = recordSize + 4;

// Leaves a segment with this attach count, its payload filled with 0xA5.
void leaveSegment(uint32_t attachCount, std::size_t objectLength = length) {
    RawSegment segment(providedName, objectLength);
    segment.write(0, Bytes(objectLength, 0xA5));
    segment.writeWord(0, attachCount);
}

Bytes image(uint32_t attachCount, unsigned char filling, std::size_t payloadSize = recordSize) {
    Bytes bytes;
    appendWord(bytes, attachCount);
    bytes.insert(bytes.end(), payloadSize, filling);
    return bytes;
}

TEST(SharedMemoryProvider, touchesNothingBeforeTheFirstMap) {
    SharedMemoryProvider provider;
    EXPECT_TRUE(std::filesystem::is_empty("/dev/shm"));
}

TEST(SharedMemoryProvider, createsAMissingObjectAndReturnsTheAlignedPayloadAfterTheCount) {
    SharedMemoryProvider provider;
    void* payload = provider.map(recordSize, providedName);
    EXPECT_EQ(RawSegment(providedName).bytes(), image(1, 0));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(payload) % 4, 0U);
    std::memset(payload, 0x5A, recordSize);
    EXPECT_EQ(RawSegment(providedName).bytes(), image(1, 0x5A));
}

TEST(SharedMemoryProvider, removesTheObjectWhenTheLastUserDetaches) {
    {
        SharedMemoryProvider provider;
        provider.map(recordSize, providedName);
    }
    EXPECT_FALSE(segmentExists(providedName));
}

TEST(SharedMemoryProvider, keepsObjectAndPayloadWhileOthersAreAttached) {
    leaveSegment(2);
    {
        SharedMemoryProvider provider;
        provider.map(recordSize, providedName);
        EXPECT_EQ(RawSegment(providedName).bytes(), image(3, 0xA5));
    }
    EXPECT_EQ(RawSegment(providedName).bytes(), image(2, 0xA5));
}

TEST(SharedMemoryProvider, removesTheObjectWhenAThirdPartyForcedTheCountToZero) {
    auto provider = std::make_unique<SharedMemoryProvider>();
    provider->map(recordSize, providedName);
    RawSegment segment(providedName);
    segment.writeWord(0, 0);
    provider.reset();
    EXPECT_FALSE(segmentExists(providedName));
    EXPECT_EQ(segment.word(0), 0U);
}

TEST(SharedMemoryProvider, anExistingObjectGetsTheSizeAskedFor) {
    for (const std::size_t earlier : {std::size_t{20}, std::size_t{9000}}) {
        leaveSegment(1, earlier);
        {
            SharedMemoryProvider provider;
            provider.map(recordSize, providedName);
            Bytes expected = image(2, 0xA5, std::min(earlier, length) - 4);
            expected.resize(length, 0);
            EXPECT_EQ(RawSegment(providedName).bytes(), expected);
        }
        std::filesystem::remove(segmentPath(providedName));
    }
}

TEST(SharedMemoryProvider, onlyTheOwnerMayOpenTheObject) {
    const mode_t previous = umask(0);
    SharedMemoryProvider provider;
    provider.map(recordSize, providedName);
    umask(previous);
    EXPECT_EQ(segmentMode(providedName), 0600U);
}

TEST(SharedMemoryProvider, takesTheNameAsItStands) {
    const std::string oddName = "odd \x01 name,Shm";
    SharedMemoryProvider provider;
    provider.map(recordSize, oddName);
    EXPECT_TRUE(segmentExists(oddName));
    EXPECT_TRUE(segmentExists(semaphoreObject(oddName + "ProviderLock")));
}

TEST(SharedMemoryProvider, keepsNoDescriptorOpen) {
    const std::size_t before = openDescriptorCount();
    SharedMemoryProvider provider;
    provider.map(recordSize, providedName);
    EXPECT_EQ(openDescriptorCount(), before);
}

TEST(SharedMemoryProvider, destructionUndoesTheMappingAndClosesTheLock) {
    auto provider = std::make_unique<SharedMemoryProvider>();
    provider->map(recordSize, providedName);
    const ino_t segment = segmentInode(providedName);
    const ino_t semaphore = segmentInode(semaphoreObject(providerLock));
    EXPECT_TRUE(isMapped(segment));
    EXPECT_TRUE(isMapped(semaphore));
    provider.reset();
    EXPECT_FALSE(isMapped(segment));
    EXPECT_FALSE(isMapped(semaphore));
}

TEST(SharedMemoryProvider, oneProviderMapsSeveralSegments) {
    auto provider = std::make_unique<SharedMemoryProvider>();
    std::memset(provider->map(recordSize, "FirstSegment"), 1, recordSize);
    std::memset(provider->map(30, "SecondSegment"), 2, 30);
    EXPECT_EQ(RawSegment("FirstSegment").bytes(), image(1, 1));
    EXPECT_EQ(RawSegment("SecondSegment").bytes(), image(1, 2, 30));
    provider.reset();
    EXPECT_FALSE(segmentExists("FirstSegment"));
    EXPECT_FALSE(segmentExists("SecondSegment"));
}

TEST(SharedMemoryProvider, countsItselfUnderTheProviderLockAndZeroesThePayloadAfterIt) {
    leaveSegment(0);
    const RawSegment segment(providedName);
    Bytes whenTaken;
    Bytes whenReleased;
    observeSemaphoreCalls([&](SemaphoreMoment moment, const sem_t*) {
        if (moment == SemaphoreMoment::Taken) {
            whenTaken = segment.bytes();
        } else if (moment == SemaphoreMoment::AboutToPost) {
            whenReleased = segment.bytes();
        }
    });
    SharedMemoryProvider provider;
    provider.map(recordSize, providedName);
    observeSemaphoreCalls(nullptr);
    EXPECT_EQ(whenTaken, image(0, 0xA5));
    EXPECT_EQ(whenReleased, image(1, 0xA5));
    EXPECT_EQ(segment.bytes(), image(1, 0));
}

TEST(SharedMemoryProvider, detachesUnderTheProviderLock) {
    auto provider = std::make_unique<SharedMemoryProvider>();
    provider->map(recordSize, providedName);
    expectToWaitFor(providerLock, providedName, [&] { provider.reset(); });
    EXPECT_FALSE(segmentExists(providedName));
}

TEST(SharedMemoryProvider, theHighestCountWrapsWithoutHarm) {
    leaveSegment(UINT32_MAX);
    {
        SharedMemoryProvider provider;
        provider.map(recordSize, providedName);
        EXPECT_EQ(RawSegment(providedName).bytes(), image(0, 0xA5));
    }
    EXPECT_FALSE(segmentExists(providedName));
}

}  // namespace
}  // namespace vantric_test
