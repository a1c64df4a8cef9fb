#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <future>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "tests/Vantric/ModemClientBlockingFixture.h"
#include "tests/support/RawSemaphore.h"

namespace {

using namespace vantric_test;
using Vantric::ModemClient;
using Vantric::WifiInfo;
using Vantric::WifiInfosList;

std::vector<int32_t> levelsOf(const std::vector<WifiInfo>& list) {
    std::vector<int32_t> levels(list.size());
    std::transform(list.begin(), list.end(), levels.begin(),
                   [](const WifiInfo& info) { return info.signalLevel; });
    return levels;
}

using ModemClientBlockingList = ModemClientBlocking;

}  // namespace

TEST_F(ModemClientBlockingList, asksForAScanAndReturnsItsResultStrongestFirst) {
    server.wifiList.publish(wifiListOf({99, 98}, 1));
    answerWith(wifiListOf({10, 70, 40}, 2));
    ASSERT_TRUE(client.getWifiAvailableListBlocking(list, patience));
    EXPECT_EQ(levelsOf(list), (std::vector<int32_t>{70, 40, 10}));
    EXPECT_STREQ(list[0].ssid, "network 1");
    EXPECT_EQ(list[0].encryptionType, 1);
    EXPECT_STREQ(list[0].encryptionName, "WPA(PSK)");
    EXPECT_STREQ(list[1].ssid, "network 2");
    EXPECT_STREQ(list[1].encryptionName, "WPA2 (PSK)");
    EXPECT_STREQ(list[2].ssid, "network 0");
    EXPECT_EQ(server.takeFrames(), (Frames{{10, ""}}));
}

TEST_F(ModemClientBlockingList, sortsLevelsAsSignedNumbersAndKeepsEqualOnes) {
    server.wifiList.publish(wifiListOf({}, 1));
    answerWith(wifiListOf({-90, lowest, 5, -90, highest, 0}, 2));
    ASSERT_TRUE(client.getWifiAvailableListBlocking(list, patience));
    EXPECT_EQ(levelsOf(list), (std::vector<int32_t>{highest, 5, 0, -90, -90, lowest}));
}

TEST_F(ModemClientBlockingList, returnsAnEmptyListForAScanThatFoundNothing) {
    server.wifiList.publish(wifiListOf({99, 98}, 1));
    answerWith(wifiListOf({}, 2));
    EXPECT_TRUE(client.getWifiAvailableListBlocking(list, patience));
    EXPECT_TRUE(list.empty());
}

TEST_F(ModemClientBlockingList, reusesTheStorageOfTheCallersList) {
    list.assign(200, someNetwork());
    const WifiInfo* storage = list.data();
    server.wifiList.publish(wifiListOf({}, 1));
    answerWith(wifiListOf({1, 2}, 2));
    ASSERT_TRUE(client.getWifiAvailableListBlocking(list, patience));
    EXPECT_EQ(list.size(), 2U);
    EXPECT_EQ(list.data(), storage);
    EXPECT_GE(list.capacity(), 200U);
}

TEST_F(ModemClientBlockingList, takesAnyOtherCounterForAnAnswer) {
    const int32_t changes[][2] = {{5, 4}, {highest, lowest}, {-1, 0}, {0, 1}, {1, 257}};
    for (const auto& change : changes) {
        server.wifiList.publish(wifiListOf({}, change[0]));
        answerWith(wifiListOf({7}, change[1]));
        EXPECT_TRUE(client.getWifiAvailableListBlocking(list, patience)) << change[1];
        server.takeFrames();
    }
}

TEST_F(ModemClientBlockingList, clampsACountOutsideTheList) {
    const struct {
        int32_t count;
        std::size_t expected;
    } cases[] = {{-5, 0}, {lowest, 0}, {100, 100}, {101, 100}, {highest, 100}};
    int32_t counter = 0;
    for (const auto& example : cases) {
        server.wifiList.publish(wifiListOf({}, counter));
        WifiInfosList found = wifiListOf(std::vector<int32_t>(100, 3), ++counter);
        found.count = example.count;
        answerWith(found);
        EXPECT_TRUE(client.getWifiAvailableListBlocking(list, patience)) << example.count;
        EXPECT_EQ(list.size(), example.expected) << example.count;
        server.takeFrames();
    }
}

TEST_F(ModemClientBlockingList, takesNoMoreEntriesThanCounted) {
    server.wifiList.publish(wifiListOf({}, 1));
    WifiInfosList found = wifiListOf({10, 20, 99}, 2);
    found.count = 2;
    answerWith(found);
    ASSERT_TRUE(client.getWifiAvailableListBlocking(list, patience));
    EXPECT_EQ(levelsOf(list), (std::vector<int32_t>{20, 10}));
}

TEST_F(ModemClientBlockingList, endsANameWithoutNulAtTheFieldsEnd) {
    server.wifiList.publish(wifiListOf({}, 1));
    WifiInfosList found = wifiListOf({1}, 2);
    setText(found.entries[0].ssid, std::string(33, 's'));
    found.entries[0].encryptionType = 0x41414141;
    answerWith(found);
    ASSERT_TRUE(client.getWifiAvailableListBlocking(list, patience));
    EXPECT_EQ(list[0].ssid, std::string(33, 's'));
    EXPECT_STREQ(list[0].encryptionName, "Unknown encryption type");
}

TEST_F(ModemClientBlockingList, timesOutWithoutTouchingTheList) {
    server.wifiList.publish(wifiListOf({1, 2, 3}, 1));
    bool isFound = true;
    const Clock::duration time =
        timeOf([&] { isFound = client.getWifiAvailableListBlocking(list, 1); });
    EXPECT_FALSE(isFound);
    EXPECT_GE(time, 1s);
    EXPECT_LT(time, 10s);
    ASSERT_EQ(list.size(), 1U);
    EXPECT_STREQ(list[0].ssid, "from the caller");
    EXPECT_EQ(server.takeFrames(), (Frames{{10, ""}}));
}

TEST_F(ModemClientBlockingList, looksOnceAndFailsWithoutAnyTimeToWait) {
    // A look counts here only if the answer was there before it.
    int observations = 0;
    for (int32_t attempt = 0; attempt < 200 && observations < 3; ++attempt) {
        server.wifiList.publish(wifiListOf({}, attempt));
        Clock::time_point answered = Clock::time_point::max();
        server.answer([&, attempt](const Frame&) {
            server.wifiList.publish(wifiListOf({1}, attempt + 1));
            answered = Clock::now();
        });
        const Clock::time_point start = Clock::now();
        EXPECT_FALSE(client.getWifiAvailableListBlocking(list, 0));
        EXPECT_GE(Clock::now() - start, 50ms);
        server.takeFrames();
        observations += answered < start + 50ms ? 1 : 0;
    }
    EXPECT_EQ(observations, 3);
    EXPECT_STREQ(list.at(0).ssid, "from the caller");
}

// The last look comes up to one interval after the deadline and still counts.
TEST_F(ModemClientBlockingList, acceptsAnAnswerThatOnlyTheLastLookCanSee) {
    bool isFound = false;
    for (int32_t attempt = 0; attempt < 5 && !isFound; ++attempt) {
        server.wifiList.publish(wifiListOf({}, attempt));
        server.answer([&, attempt](const Frame&) {
            std::this_thread::sleep_for(975ms);
            server.wifiList.publish(wifiListOf({1}, attempt + 1));
        });
        isFound = client.getWifiAvailableListBlocking(list, 1);
        server.takeFrames();
    }
    EXPECT_TRUE(isFound);
}

TEST_F(ModemClientBlockingList, acceptsTheLongestTimeout) {
    server.wifiList.publish(wifiListOf({}, 1));
    answerWith(wifiListOf({1}, 2));
    EXPECT_TRUE(client.getWifiAvailableListBlocking(list, std::numeric_limits<uint32_t>::max()));
}

TEST_F(ModemClientBlockingList, failsUnsentBeforeConnecting) {
    server.wifiList.publish(wifiListOf({1}, 1));
    ModemClient other;
    bool isFound = true;
    EXPECT_LT(timeOf([&] { isFound = other.getWifiAvailableListBlocking(list, patience); }), 10s);
    EXPECT_FALSE(isFound);
    EXPECT_TRUE(server.takeFrames().empty());
    EXPECT_EQ(list.size(), 1U);
}

TEST_F(ModemClientBlockingList, failsUnsentOnAnUnreadableList) {
    bool isFound = true;
    EXPECT_LT(timeOf([&] { isFound = client.getWifiAvailableListBlocking(list, patience); }), 10s);
    EXPECT_FALSE(isFound);
    EXPECT_TRUE(server.takeFrames().empty());
    EXPECT_EQ(list.size(), 1U);
}

TEST_F(ModemClientBlockingList, takesZerosForTheOldListOnceTheFailureWasReported) {
    EXPECT_FALSE(client.getWifiAvailableListBlocking(list, patience));
    answerWith(wifiListOf({4}, 3));
    EXPECT_TRUE(client.getWifiAvailableListBlocking(list, patience));
    EXPECT_EQ(levelsOf(list), (std::vector<int32_t>{4}));
    EXPECT_EQ(server.takeFrames(), (Frames{{10, ""}}));
}

TEST_F(ModemClientBlockingList, findsNoChangeBetweenZerosAndAFirstCounterOfZero) {
    EXPECT_FALSE(client.getWifiAvailableListBlocking(list, patience));
    answerWith(wifiListOf({4}, 0));
    EXPECT_FALSE(client.getWifiAvailableListBlocking(list, 1));
}

TEST_F(ModemClientBlockingList, failsAtOnceWhenTheListBecomesUnreadable) {
    server.wifiList.publish(wifiListOf({1}, 1));
    server.answer([&](const Frame&) { invalidate(server.wifiList); });
    bool isFound = true;
    EXPECT_LT(timeOf([&] { isFound = client.getWifiAvailableListBlocking(list, patience); }), 10s);
    EXPECT_FALSE(isFound);
    EXPECT_EQ(list.size(), 1U);
}

TEST_F(ModemClientBlockingList, timesOutOnARequestThatTheFullChannelDropped) {
    server.wifiList.publish(wifiListOf({1}, 1));
    const std::string filling(4088, 'x');
    client.sendTextCommand(filling);
    const Clock::duration time =
        timeOf([&] { EXPECT_FALSE(client.getWifiAvailableListBlocking(list, 1)); });
    EXPECT_GE(time, 1s);
    EXPECT_EQ(server.takeFrames(), (Frames{{12, filling}}));
}

TEST_F(ModemClientBlockingList, seesALateAnswerOnTheNextCallOnly) {
    server.wifiList.publish(wifiListOf({1}, 1));
    EXPECT_FALSE(client.getWifiAvailableListBlocking(list, 0));
    server.wifiList.publish(wifiListOf({2}, 2));
    EXPECT_FALSE(client.getWifiAvailableListBlocking(list, 0));
    // An answer to these requests could come before the next call takes its first look.
    server.takeFrames();
    answerWith(wifiListOf({3}, 3));
    EXPECT_TRUE(client.getWifiAvailableListBlocking(list, patience));
    EXPECT_EQ(levelsOf(list), (std::vector<int32_t>{3}));
}

TEST_F(ModemClientBlockingList, holdsNoLockWhileItWaits) {
    server.wifiList.publish(wifiListOf({1}, 1));
    std::future<bool> found = std::async(
        std::launch::async, [&] { return client.getWifiAvailableListBlocking(list, 1); });
    int samples = 0;
    int freeSamples = 0;
    while (found.wait_for(2ms) == std::future_status::timeout) {
        ++samples;
        freeSamples += semaphoreValue("ModemWifiListLock") == 1 ? 1 : 0;
    }
    EXPECT_FALSE(found.get());
    EXPECT_GT(samples, 5);
    EXPECT_GT(freeSamples, samples / 2);
}
