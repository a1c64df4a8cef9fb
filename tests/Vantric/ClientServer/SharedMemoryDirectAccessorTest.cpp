#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstddef>
#include <cstring>
#include <memory>
#include <new>

#include "Vantric/ClientServer/SharedMemoryDirectAccessor.h"
#include "Vantric/ClientServer/SharedMemoryProvider.h"
#include "tests/Vantric/ClientServer/RecordingProvider.h"
#include "tests/support/VirtualSlot.h"

namespace vantric_test {
namespace {

using com_qel::Orvane::Vantric::ClientServer::SharedMemoryDirectAccessor;
using com_qel::Orvane::Vantric::ClientServer::SharedMemoryProvider;

struct Memory {
    uint32_t first;
    unsigned char second[6];
};

constexpr const char* name = "TestSegment";

using Accessor = SharedMemoryDirectAccessor<Memory, SharedMemoryProvider>;
using RecordingAccessor = SharedMemoryDirectAccessor<Memory, RecordingProvider>;

// Shows which of the two destructors ran.
class Probe : public RecordingAccessor {
  public:
    Probe() : RecordingAccessor(RecordingProvider::segmentName) {}

    virtual void firstAdded() {}

    static void* operator new(std::size_t size) { return ::operator new(size); }
    static void* operator new(std::size_t, void* place) { return place; }
    static void operator delete(void* memory) {
        RecordingProvider::events().push_back("freed");
        ::operator delete(memory);
    }
};

TEST(SharedMemoryDirectAccessor, mapsTheSegmentForItsMemory) {
    Accessor accessor(name);
    EXPECT_EQ(segmentLength(name), sizeof(Memory) + 4);
    accessor.memory()->first = 0x04030201;
    std::memset(accessor.memory()->second, 9, 6);
    EXPECT_EQ(RawSegment(name).bytes(4, 10), (Bytes{1, 2, 3, 4, 9, 9, 9, 9, 9, 9}));
}

TEST(SharedMemoryDirectAccessor, theLockIsNamedAfterTheSegment) {
    Accessor accessor(name);
    accessor.lock().lock();
    EXPECT_EQ(semaphoreValue("TestSegmentLock"), 0);
    accessor.lock().unlock();
    EXPECT_EQ(semaphoreValue("TestSegmentLock"), 1);
    EXPECT_EQ(semaphoreValue("TestSegmentProviderLock"), 1);
}

TEST(SharedMemoryDirectAccessor, detachesWhenDestroyed) {
    { const Accessor accessor(name); }
    EXPECT_FALSE(segmentExists(name));
    EXPECT_TRUE(segmentExists(semaphoreObject("TestSegmentLock")));
}

TEST(SharedMemoryDirectAccessor, buildsTheProviderThenTheLockThenMaps) {
    RecordingProvider::events().clear();
    const RecordingAccessor accessor(RecordingProvider::segmentName);
    EXPECT_EQ(RecordingProvider::events(),
              (std::vector<std::string>{"constructed, lock closed",
                                        "map 12 RecordedSegment, lock open"}));
}

TEST(SharedMemoryDirectAccessor, closesTheLockBeforeTheProviderGoes) {
    {
        const RecordingAccessor accessor(RecordingProvider::segmentName);
        RecordingProvider::events().clear();
    }
    EXPECT_EQ(RecordingProvider::events(), std::vector<std::string>{"destroyed, lock closed"});
}

TEST(SharedMemoryDirectAccessor, passesOnWhatMapThrowsAndDestroysItsParts) {
    RecordingProvider::events().clear();
    RecordingProvider::failsNext() = true;
    try {
        const RecordingAccessor accessor(RecordingProvider::segmentName);
        FAIL() << "no exception";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "no room");
    }
    EXPECT_EQ(
        RecordingProvider::events(),
        (std::vector<std::string>{"constructed, lock closed", "map 12 RecordedSegment, lock open",
                                  "destroyed, lock closed"}));
}

TEST(SharedMemoryDirectAccessor, holdsNoLockWhileMappingNorAfterwards) {
    Accessor accessor(name);
    EXPECT_EQ(semaphoreValue("TestSegmentLock"), 1);
}

TEST(SharedMemoryDirectAccessor, aLockThatCannotBeOpenedDoesNotStopConstruction) {
    ASSERT_EQ(mkdir(segmentPath("sem.TestSegmentLock").c_str(), 0777), 0);
    Accessor accessor(name);
    accessor.lock().lock();
    accessor.memory()->first = 5;
    accessor.lock().unlock();
    EXPECT_EQ(RawSegment(name).word(4), 5U);
}

TEST(SharedMemoryDirectAccessor, theMemoryComesFirstInTheObject) {
    Accessor accessor(name);
    Memory* memory = nullptr;
    std::memcpy(&memory, reinterpret_cast<unsigned char*>(&accessor) + sizeof(void*),
                sizeof(void*));
    EXPECT_EQ(memory, accessor.memory());
    EXPECT_EQ(sizeof(Accessor), 4 * sizeof(void*));
}

TEST(SharedMemoryDirectAccessor, slotZeroDestroysAndSlotOneFreesAsWell) {
    alignas(Probe) unsigned char storage[sizeof(Probe)];
    void* object = new (storage) Probe;
    RecordingProvider::events().clear();
    callVirtualSlot(object, 0);
    EXPECT_EQ(RecordingProvider::events(), std::vector<std::string>{"destroyed, lock closed"});

    object = new Probe;
    RecordingProvider::events().clear();
    callVirtualSlot(object, 1);
    EXPECT_EQ(RecordingProvider::events(),
              (std::vector<std::string>{"destroyed, lock closed", "freed"}));
}

TEST(SharedMemoryDirectAccessor, hasNoVirtualOperationBesidesTheDestructor) {
    EXPECT_EQ(virtualSlot(&Probe::firstAdded), 2U);
}

}  // namespace
}  // namespace vantric_test
