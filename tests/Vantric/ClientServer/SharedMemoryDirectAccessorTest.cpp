#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "Vantric/ClientServer/SharedMemoryDirectAccessor.h"
#include "Vantric/ClientServer/SharedMemoryProvider.h"
#include "tests/support/ProcessFacts.h"
#include "tests/support/RawSegment.h"
#include "tests/support/RawSemaphore.h"
#include "tests/support/VirtualSlot.h"

namespace vantric_test {
namespace {

using namespace com_qel::Orvane::Vantric::ClientServer;

struct Memory {
    uint32_t first;
    unsigned char second[6];
};

// A provider without shared memory that notes what is done with it.
class RecordingProvider {
  public:
    static constexpr const char* segmentName = "RecordedSegment";
    static constexpr const char* lockName = "RecordedSegmentLock";

    // What happened so far, each with whether the lock was open then. Empty it before each use.
    static std::vector<std::string>& events() {
        static std::vector<std::string> noted;
        return noted;
    }

    // Lets the next map() throw.
    static bool& failsNext() {
        static bool fails = false;
        return fails;
    }

    RecordingProvider() { note("constructed"); }
    ~RecordingProvider() { note("destroyed"); }
    RecordingProvider& operator=(RecordingProvider&&) = delete;

    void* map(uint32_t size, const std::string& name) {
        note("map " + std::to_string(size) + " " + name);
        if (failsNext()) {
            failsNext() = false;
            throw std::runtime_error("no room");
        }
        return memory_;
    }

  private:
    static void note(const std::string& event) {
        const std::string object = semaphoreObject(lockName);
        const bool isOpen = segmentExists(object) && isMapped(segmentInode(object));
        events().push_back(event + (isOpen ? ", lock open" : ", lock closed"));
    }

    alignas(8) unsigned char memory_[64] = {};
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

TEST(SharedMemoryDirectAccessor, closesTheLockBeforeTheProviderGoes) {
    {
        const RecordingAccessor accessor(RecordingProvider::segmentName);
        RecordingProvider::events().clear();
    }
    EXPECT_EQ(RecordingProvider::events(), std::vector<std::string>{"destroyed, lock closed"});
}

TEST(SharedMemoryDirectAccessor, buildsTheProviderThenTheLockThenMapsAndGoesBackWhenThatFails) {
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

TEST(SharedMemoryDirectAccessor, theMemoryComesFirstInTheObject) {
    Accessor accessor(name);
    Memory* memory = nullptr;
    std::memcpy(&memory, reinterpret_cast<unsigned char*>(&accessor) + sizeof(void*),
                sizeof(void*));
    EXPECT_EQ(memory, accessor.memory());
    EXPECT_EQ(sizeof(Accessor), 4 * sizeof(void*));
}

TEST(SharedMemoryDirectAccessor, slotZeroDestroysSlotOneFreesAsWellAndThereIsNoOther) {
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
    EXPECT_EQ(virtualSlot(&Probe::firstAdded), 2U);
}

}  // namespace
}  // namespace vantric_test
