#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "Vantric/ClientServer/SharedMemoryModemState.h"
#include "Vantric/ModemClient.h"
#include "tests/support/RawSegment.h"
#include "tests/support/RawSemaphore.h"
#include "tests/support/VirtualSlot.h"

namespace vantric_test {
namespace {

using com_qel::Orvane::Vantric::ModemClient;
using com_qel::Orvane::Vantric::ModemState;
using com_qel::Orvane::Vantric::ModemStateExtended;
using com_qel::Orvane::Vantric::WifiInfosList;
using com_qel::Orvane::Vantric::ClientServer::SharedMemoryLayout;
using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemState;
using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemStateExtended;
using com_qel::Orvane::Vantric::ClientServer::SharedMemoryProvider;
using com_qel::Orvane::Vantric::ClientServer::SharedMemoryWifiList;

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

// Whether a client accepts a basic state published `age` seconds ago. The clock's second must not
// change between publishing and reading.
bool isFresh(int64_t age) {
    const auto secondsNow = [] {
        return std::chrono::duration_cast<std::chrono::seconds>(
                   std::chrono::system_clock::now().time_since_epoch())
            .count();
    };
    SharedMemoryModemState segment;
    ModemClient client;
    EXPECT_TRUE(client.connect());
    while (true) {
        const int64_t now = secondsNow();
        ModemState state = {};
        state.timestamp = static_cast<int32_t>(now - age);
        segment.publish(state);
        int32_t type = 0;
        const bool isAccepted = client.getConnectivityType(type);
        if (secondsNow() == now) {
            return isAccepted;
        }
    }
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

TEST(SharedMemoryModemState, ownersHoldAndReleaseThemAsLayouts) {
    std::unique_ptr<SharedMemoryLayout<WifiInfosList, SharedMemoryProvider>> owned =
        std::make_unique<SharedMemoryWifiList>();
    EXPECT_TRUE(segmentExists("ModemWifiList"));
    owned.reset();
    EXPECT_FALSE(segmentExists("ModemWifiList"));
}

TEST(SharedMemoryModemState, threeSegmentsCreateTheirObjectsAndSixLocks) {
    const SharedMemoryModemState state;
    const SharedMemoryModemStateExtended extendedState;
    const SharedMemoryWifiList list;
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/shm")) {
        names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names,
              (std::vector<std::string>{"ModemStateEx", "ModemStateShm", "ModemWifiList",
                                        "sem.ModemStateExLock", "sem.ModemStateExProviderLock",
                                        "sem.ModemStateShmLock", "sem.ModemStateShmProviderLock",
                                        "sem.ModemWifiListLock", "sem.ModemWifiListProviderLock"}));
}

TEST(SharedMemoryModemState, aBasicStateOfExactly300SecondsIsFresh) {
    EXPECT_TRUE(isFresh(300));
}

TEST(SharedMemoryModemState, aBasicStateOf301SecondsIsStale) {
    EXPECT_FALSE(isFresh(301));
}

TEST(SharedMemoryModemState, aBasicStateFromTheFutureIsFresh) {
    EXPECT_TRUE(isFresh(-10));
    EXPECT_TRUE(isFresh(-100000000));
}

TEST(SharedMemoryModemState, aBasicStateFromLongAgoIsStale) {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    const int64_t now = std::chrono::duration_cast<std::chrono::seconds>(sinceEpoch).count();
    EXPECT_FALSE(isFresh(now));              // published at the epoch
    EXPECT_FALSE(isFresh(now - INT32_MIN));  // at the earliest time there is
}

TEST(SharedMemoryModemState, aReconnectNeitherRemovesNorZeroesTheSegments) {
    ModemClient client;
    ASSERT_TRUE(client.connect());
    const std::vector<std::string> names = {"ModemStateShm", "ModemStateEx", "ModemWifiList"};
    std::vector<ino_t> objects;
    for (const std::string& name : names) {
        RawSegment(name).write(12, {1, 2, 3});
        objects.push_back(segmentInode(name));
    }
    ASSERT_TRUE(client.connect());
    for (std::size_t index = 0; index < names.size(); ++index) {
        EXPECT_EQ(RawSegment(names[index]).word(0), 1U) << names[index];
        EXPECT_EQ(RawSegment(names[index]).bytes(12, 3), (Bytes{1, 2, 3})) << names[index];
        EXPECT_EQ(segmentInode(names[index]), objects[index]) << names[index];
    }
}

}  // namespace
}  // namespace vantric_test
