#include <gtest/gtest.h>
#include <sys/time.h>

#include <csignal>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

#include "Vantric/Utils/PollInterval.h"
#include "tests/Vantric/ModemClientBlockingFixture.h"

namespace {

using namespace vantric_test;
using Vantric::ModemClient;
using Vantric::ModemStateExtended;
using Vantric::ModemStatus;

using ModemClientBlockingStatus = ModemClientBlocking;

void ignoreSignal(int) {}

}  // namespace

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

TEST_F(ModemClientBlockingStatus, acceptsAStateOfAnyAge) {
    ModemStateExtended old = someExtendedState(1);
    old.serverWord = secondsNow() - 100000;
    server.extendedState.publish(old);
    old.updateCounter = 2;
    answerWith(old);
    EXPECT_TRUE(client.getModemStatusBlocking(status, patience));
}

TEST_F(ModemClientBlockingStatus, takesAnyOtherCounterForAnAnswer) {
    const int32_t changes[][2] = {{5, 4}, {highest, lowest}, {-1, 0}, {1, 257}};
    for (const auto& change : changes) {
        server.extendedState.publish(someExtendedState(change[0]));
        answerWith(someExtendedState(change[1]));
        EXPECT_TRUE(client.getModemStatusBlocking(status, patience)) << change[1];
        server.takeFrames();
    }
}

TEST_F(ModemClientBlockingStatus, timesOutWithoutTouchingTheStatus) {
    server.extendedState.publish(someExtendedState(1));
    std::memset(&status, 0x5a, sizeof(status));
    const ModemStatus untouched = status;
    bool isRefreshed = true;
    const Clock::duration time =
        timeOf([&] { isRefreshed = client.getModemStatusBlocking(status, 1); });
    EXPECT_FALSE(isRefreshed);
    EXPECT_GE(time, 1s);
    EXPECT_LT(time, 10s);
    EXPECT_EQ(std::memcmp(&status, &untouched, sizeof(status)), 0);
    EXPECT_EQ(server.takeFrames(), (Frames{{11, ""}}));
}

TEST_F(ModemClientBlockingStatus, looksOnceAndFailsWithoutAnyTimeToWait) {
    // A look counts here only if the answer was there before it.
    int observations = 0;
    for (int32_t attempt = 0; attempt < 200 && observations < 3; ++attempt) {
        server.extendedState.publish(someExtendedState(attempt));
        Clock::time_point answered = Clock::time_point::max();
        server.answer([&, attempt](const Frame&) {
            server.extendedState.publish(someExtendedState(attempt + 1));
            answered = Clock::now();
        });
        const Clock::time_point start = Clock::now();
        EXPECT_FALSE(client.getModemStatusBlocking(status, 0));
        EXPECT_GE(Clock::now() - start, 50ms);
        server.takeFrames();
        observations += answered < start + 50ms ? 1 : 0;
    }
    EXPECT_EQ(observations, 3);
}

TEST_F(ModemClientBlockingStatus, acceptsTheLongestTimeout) {
    server.extendedState.publish(someExtendedState(1));
    answerWith(someExtendedState(2));
    EXPECT_TRUE(client.getModemStatusBlocking(status, std::numeric_limits<uint32_t>::max()));
}

TEST_F(ModemClientBlockingStatus, failsUnsentBeforeConnectingAndOnAnUnreadableState) {
    ModemClient other;
    EXPECT_FALSE(other.getModemStatusBlocking(status, patience));
    EXPECT_FALSE(client.getModemStatusBlocking(status, patience));
    EXPECT_TRUE(server.takeFrames().empty());
}

TEST_F(ModemClientBlockingStatus, takesZerosForTheOldStateOnceTheFailureWasReported) {
    EXPECT_FALSE(client.getModemStatusBlocking(status, patience));
    answerWith(someExtendedState(3));
    EXPECT_TRUE(client.getModemStatusBlocking(status, patience));
    EXPECT_EQ(status.carrierSignalLevel, -71);
}

TEST_F(ModemClientBlockingStatus, failsAtOnceWhenTheStateBecomesUnreadable) {
    server.extendedState.publish(someExtendedState(1));
    server.answer([&](const Frame&) { invalidate(server.extendedState); });
    bool isRefreshed = true;
    EXPECT_LT(timeOf([&] { isRefreshed = client.getModemStatusBlocking(status, patience); }), 10s);
    EXPECT_FALSE(isRefreshed);
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
    action.sa_handler = ignoreSignal;
    ASSERT_EQ(sigaction(SIGALRM, &action, nullptr), 0);
    const itimerval every5Milliseconds = {{0, 5000}, {0, 5000}};
    ASSERT_EQ(setitimer(ITIMER_REAL, &every5Milliseconds, nullptr), 0);
    const Clock::duration time = timeOf([] { Vantric::sleepForPollInterval(); });
    const itimerval never = {};
    setitimer(ITIMER_REAL, &never, nullptr);
    EXPECT_GE(time, 50ms);
    EXPECT_LT(time, 5s);
}
