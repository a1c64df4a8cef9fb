#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <type_traits>

#include "Vantric/ClientServer/SharedMemoryModemState.h"
#include "tests/support/RawSegment.h"
#include "tests/support/RawSemaphore.h"
#include "tests/support/VirtualSlot.h"

namespace vantric_test {
namespace {

using namespace com_qel::Orvane::Vantric;
using namespace com_qel::Orvane::Vantric::ClientServer;

// A derived class whose first own virtual operation shows how many it inherits.
template <class Segment>
class Extended : public Segment {
  public:
    virtual void firstAdded() {}
};

// Publishes a record of distinct bytes and finds them in the object, at their place.
template <class Segment, class Record>
void expectSegment(const std::string& name, std::size_t recordSize) {
    Bytes image;
    appendWord(image, 1);
    appendWord(image, 1);
    image.insert(image.end(), {1, 0, 0, 0});
    ASSERT_EQ(sizeof(Record), recordSize);
    for (std::size_t index = 0; index < recordSize; ++index) {
        image.push_back(static_cast<unsigned char>(index % 251 + 1));
    }
    Record record;
    std::memcpy(&record, image.data() + 12, recordSize);

    Segment segment;
    EXPECT_EQ(segmentLength(name), recordSize + 12);
    EXPECT_EQ(RawSegment(name).bytes(4, recordSize + 8), Bytes(recordSize + 8, 0));
    segment.publish(record);
    EXPECT_EQ(RawSegment(name).bytes(), image);

    Record copy = {};
    EXPECT_TRUE(segment.read(copy));
    EXPECT_EQ(std::memcmp(&copy, &record, recordSize), 0);
    EXPECT_TRUE(segment.isCompatibleVersion(1));
    EXPECT_FALSE(segment.isCompatibleVersion(0));
    EXPECT_FALSE(segment.isCompatibleVersion(2));

    segment.accessor().lock().lock();
    EXPECT_EQ(semaphoreValue(name + "Lock"), 0);
    segment.accessor().lock().unlock();
    EXPECT_EQ(semaphoreValue(name + "ProviderLock"), 1);
}

template <class Segment, class Record>
void expectNothingAdded() {
    using Base = SharedMemoryLayout<Record, SharedMemoryProvider>;
    static_assert(std::is_base_of_v<Base, Segment>);
    static_assert(sizeof(Segment) == sizeof(Base));
    EXPECT_EQ(virtualSlot(&Extended<Segment>::firstAdded), 3U);
}

TEST(SharedMemoryModemState, theBasicStateIsASegmentOf153Bytes) {
    expectSegment<SharedMemoryModemState, ModemState>("ModemStateShm", 141);
}

TEST(SharedMemoryModemState, theExtendedStateIsASegmentOf168Bytes) {
    expectSegment<SharedMemoryModemStateExtended, ModemStateExtended>("ModemStateEx", 156);
}

TEST(SharedMemoryModemState, theWifiListIsASegmentOf4120Bytes) {
    expectSegment<SharedMemoryWifiList, WifiInfosList>("ModemWifiList", 4108);
}

TEST(SharedMemoryModemState, theSegmentsAddNothingToTheLayout) {
    expectNothingAdded<SharedMemoryModemState, ModemState>();
    expectNothingAdded<SharedMemoryModemStateExtended, ModemStateExtended>();
    expectNothingAdded<SharedMemoryWifiList, WifiInfosList>();
}

}  // namespace
}  // namespace vantric_test
