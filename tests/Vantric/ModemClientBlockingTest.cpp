// The two operations that wait for the server. They share their loop, so what it does is tested
// with the list of networks.
#include <gtest/gtest.h>
#include <sys/time.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "Vantric/ModemClient.h"
#include "Vantric/Utils/Waiting.h"
#include "tests/support/Allocations.h"
#include "tests/support/PublishedServer.h"

namespace {

using namespace std::chrono_literals;
using namespace vantric_test;
using Vantric::ModemClient;
using Vantric::ModemStateExtended;
using Vantric::ModemStatus;
using Vantric::WifiInfo;
using Vantric::WifiInfosList;
using Clock = std::chrono::steady_clock;

constexpr int32_t lowest = std::numeric_limits<int32_t>::min();
constexpr int32_t highest = std::numeric_limits<int32_t>::max();
constexpr uint32_t patience = 30;  // seconds; far more than any answer here takes

template <class Action>
Clock::duration timeOf(Action action) {
    const Clock::time_point start = Clock::now();
    action();
    return Clock::now() - start;
}

WifiInfo someNetwork() {
    WifiInfo info = {};
    setText(info.ssid, "from the caller");
    return info;
}

class ModemClientBlocking : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(client.connect()); }

    void answerWith(const WifiInfosList& found) {
        server.answer([this, found](const Frame&) { server.wifiList.publish(found); });
    }

    void answerWith(const ModemStateExtended& refreshed) {
        server.answer([this, refreshed](const Frame&) { server.extendedState.publish(refreshed); });
    }

    PublishedServer server;
    ModemClient client;
    std::vector<WifiInfo> list = {someNetwork()};
    ModemStatus status = {};
};

using ModemClientBlockingList = ModemClientBlocking;
using ModemClientBlockingStatus = ModemClientBlocking;

std::vector<int32_t> levelsOf(const std::vector<WifiInfo>& list) {
    std::vector<int32_t> levels(list.size());
    std::transform(list.begin(), list.end(), levels.begin(),
                   [](const WifiInfo& info) { return info.signalLevel; });
    return levels;
}

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

TEST_F(ModemClientBlockingList, pollsOnceAndFailsWithoutAnyTimeToWait) {
    // A poll counts here only if the answer was there before it.
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

// The last poll comes up to one interval after the deadline and still counts.
TEST_F(ModemClientBlockingList, acceptsAnAnswerThatOnlyTheLastPollSees) {
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

TEST_F(ModemClientBlockingList, failsUnsentOnAnUnreadableList) {
    bool isFound = true;
    EXPECT_LT(timeOf([&] { isFound = client.getWifiAvailableListBlocking(list, patience); }), 10s);
    EXPECT_FALSE(isFound);
    EXPECT_TRUE(server.takeFrames().empty());
    EXPECT_EQ(list.size(), 1U);
}

TEST_F(ModemClientBlockingList, leavesTheListUntouchedWheneverMemoryRunsOut) {
    bool isFound = false;
    int32_t attempt = 0;
    while (!isFound) {
        ASSERT_EQ(list.size(), 1U);
        ASSERT_STREQ(list[0].ssid, "from the caller");
        server.wifiList.publish(wifiListOf({}, attempt));
        answerWith(wifiListOf({1, 2}, ++attempt));
        {
            const Allocations allocations(static_cast<std::size_t>(attempt));
            isFound = client.getWifiAvailableListBlocking(list, patience);
        }
        server.takeFrames();
    }
    EXPECT_GT(attempt, 2);
}

TEST_F(ModemClientBlockingList, takesZerosForTheOldListOnceTheFailureWasReported) {
    EXPECT_FALSE(client.getWifiAvailableListBlocking(list, patience));
    answerWith(wifiListOf({4}, 3));
    EXPECT_TRUE(client.getWifiAvailableListBlocking(list, patience));
    EXPECT_EQ(levelsOf(list), (std::vector<int32_t>{4}));
    EXPECT_EQ(server.takeFrames(), (Frames{{10, ""}}));
}

TEST_F(ModemClientBlockingList, failsAtOnceWhenTheListBecomesUnreadable) {
    server.wifiList.publish(wifiListOf({1}, 1));
    server.answer([&](const Frame&) { invalidate(server.wifiList); });
    bool isFound = true;
    EXPECT_LT(timeOf([&] { isFound = client.getWifiAvailableListBlocking(list, patience); }), 10s);
    EXPECT_FALSE(isFound);
    EXPECT_EQ(list.size(), 1U);
}

TEST_F(ModemClientBlockingStatus, asksForARefreshAndReturnsTheNewStatus) {
    server.extendedState.publish(someExtendedState(1));
    ModemStateExtended refreshed = someExtendedState(2);
    refreshed.carrierSignalLevel = -99;
    refreshed.wifiEncryptionType = 5;
    answerWith(refreshed);
    ASSERT_TRUE(client.getModemStatusBlocking(status, patience));
    EXPECT_EQ(status.carrierSignalLevel, -99);
    EXPECT_STREQ(status.wifiSsid, "home network");
    EXPECT_EQ(status.wifiEncryptionType, 5);
    EXPECT_STREQ(status.wifiEncryptionName, "WPA2 Enterprise (RADIUS)");
    EXPECT_EQ(status.wifiSignalLevel, 44);
    EXPECT_STREQ(status.ipv4Address, "192.168.100.200");
    EXPECT_STREQ(status.macAddress, "00:11:22:33:44:55");
    EXPECT_EQ(server.takeFrames(), (Frames{{11, ""}}));
}

TEST_F(ModemClientBlockingStatus, timesOutWithoutTouchingTheStatus) {
    server.extendedState.publish(someExtendedState(1));
    std::memset(&status, 0x5a, sizeof(status));
    const ModemStatus untouched = status;
    EXPECT_FALSE(client.getModemStatusBlocking(status, 0));
    EXPECT_EQ(std::memcmp(&status, &untouched, sizeof(status)), 0);
    EXPECT_EQ(server.takeFrames(), (Frames{{11, ""}}));
}

TEST_F(ModemClientBlocking, failsUnsentWhileNotConnected) {
    server.wifiList.publish(wifiListOf({1}, 1));
    server.extendedState.publish(someExtendedState(1));
    client.disconnect();
    EXPECT_LT(timeOf([&] {
                  EXPECT_FALSE(client.getWifiAvailableListBlocking(list, patience));
                  EXPECT_FALSE(client.getModemStatusBlocking(status, patience));
              }),
              10s);
    EXPECT_TRUE(server.takeFrames().empty());
    EXPECT_EQ(list.size(), 1U);
}

// An operation whose first failure is still to come fails unsent; afterwards it sends its request.
TEST_F(ModemClientBlocking, remembersTheFailuresOfEachSegmentByItself) {
    std::string text;
    EXPECT_FALSE(client.getWifiSSID(text));
    EXPECT_FALSE(client.getModemStatusBlocking(status, 0));
    EXPECT_FALSE(client.getWifiAvailableListBlocking(list, 0));
    EXPECT_TRUE(server.takeFrames().empty());

    EXPECT_FALSE(client.getModemStatusBlocking(status, 0));
    EXPECT_FALSE(client.getWifiAvailableListBlocking(list, 0));
    EXPECT_EQ(server.takeFrames(), (Frames{{11, ""}, {10, ""}}));
    EXPECT_TRUE(client.getWifiSSID(text));
}

TEST_F(ModemClientBlocking, forgetsAFailureOfOneSegmentWithoutTheOthers) {
    std::string text;
    EXPECT_FALSE(client.getWifiSSID(text));
    EXPECT_FALSE(client.getModemStatusBlocking(status, 0));
    EXPECT_FALSE(client.getWifiAvailableListBlocking(list, 0));
    server.extendedState.publish(someExtendedState(1));
    EXPECT_FALSE(client.getModemStatusBlocking(status, 0));
    invalidate(server.extendedState);
    server.takeFrames();

    EXPECT_FALSE(client.getModemStatusBlocking(status, 0));
    EXPECT_TRUE(server.takeFrames().empty());
    EXPECT_FALSE(client.getWifiAvailableListBlocking(list, 0));
    EXPECT_EQ(server.takeFrames(), (Frames{{10, ""}}));
    EXPECT_TRUE(client.getWifiSSID(text));
}

TEST_F(ModemClientBlocking, waitsTheWholeIntervalThroughSignals) {
    struct sigaction action = {};
    action.sa_handler = [](int) {};
    ASSERT_EQ(sigaction(SIGALRM, &action, nullptr), 0);
    const itimerval every5Milliseconds = {{0, 5000}, {0, 5000}};
    ASSERT_EQ(setitimer(ITIMER_REAL, &every5Milliseconds, nullptr), 0);
    const Clock::duration time = timeOf([] { Vantric::sleepForPollInterval(); });
    const itimerval never = {};
    setitimer(ITIMER_REAL, &never, nullptr);
    EXPECT_GE(time, 50ms);
    EXPECT_LT(time, 5s);
}
