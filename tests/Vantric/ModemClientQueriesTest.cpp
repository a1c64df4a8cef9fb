#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "Vantric/ModemClient.h"
#include "tests/support/Allocations.h"
#include "tests/support/LogTranscript.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/Roles.h"
#include "tests/support/SemaphoreCalls.h"

namespace {

using namespace com_qel::Orvane::Vantric;
using namespace vantric_test;

constexpr const char* notConnected = "SharedMemoryModemState is not connected.";
constexpr const char* unreadable = "Failed to read from shared memory.";
constexpr const char* stale = "SharedMemoryModemState is stale.";

std::string hostnameRecord(const std::string& reason) {
    return errorRecord("ModemClient", "Failed to get modem Hostname, error: " + reason);
}

std::string passwordRecord(const std::string& reason) {
    return errorRecord("ModemClient",
                       "Failed to get modem wifi password and encryption type, error: " + reason);
}

// What each of the five queries returns and writes.
std::vector<std::string> answersOf(ModemClient& client) {
    std::vector<std::string> answers;
    const auto query = [&answers](const auto& ask) {
        int32_t number = -1;
        std::string text = "untouched";
        const bool isAnswered = ask(number, text);
        answers.push_back((isAnswered ? "" : "failed ") + std::to_string(number) + " " + text);
    };
    query([&](int32_t& number, std::string&) { return client.getConnectivityType(number); });
    query([&](int32_t&, std::string& text) { return client.getWifiSSID(text); });
    query([&](int32_t&, std::string& text) { return client.getWifiConnectionState(text); });
    query([&](int32_t& number, std::string& text) {
        return client.getWifiPasswordAndEncryptionType(number, text);
    });
    query([&](int32_t&, std::string& text) { return client.getHostname(text); });
    return answers;
}

const std::vector<std::string> fiveFailures(5, "failed -1 untouched");

class ModemClientQueries : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(client.connect()); }
    void TearDown() override { observeSemaphoreCalls(nullptr); }

    // Runs `action` once, right after the next release of a lock.
    static void afterNextUnlock(const std::function<void()>& action) {
        observeSemaphoreCalls(
            [action, isDone = false](SemaphoreMoment moment, const sem_t*) mutable {
                if (moment == SemaphoreMoment::Posted && !isDone) {
                    isDone = true;
                    action();
                }
            });
    }

    PublishedServer server;
    ModemClient client;
    int32_t number = -1;
    std::string text = "untouched";
};

const RoleRegistration unconnected("queryUnconnected", [](const auto&) {
    ModemClient client;
    answersOf(client);
    answersOf(client);
    return 0;
});

const RoleRegistration connected("queryConnected", [](const auto&) {
    ModemClient client;
    if (!client.connect()) {
        return 1;
    }
    std::string hostname;
    client.getHostname(hostname);
    answersOf(client);
    return 0;
});

// Fails each allocation of a failing query in turn, those of the first log record included: the
// query's own one comes last, because a record that gets through configures the logger for good.
const RoleRegistration starving("queryWithoutMemory", [](const auto&) {
    ModemClient client;
    std::string hostname;
    const auto fails = [&](std::size_t failingAllocation) {
        const Allocations allocations(failingAllocation);
        return !client.getHostname(hostname);
    };
    bool hasFailed = true;
    for (std::size_t allocation = 2; allocation < 50; ++allocation) {
        hasFailed = fails(allocation) && hasFailed;
    }
    return fails(1) && hasFailed ? 0 : 1;
});

}  // namespace

TEST_F(ModemClientQueries, returnWhatTheServerPublished) {
    server.state.publish(freshState());
    EXPECT_EQ(answersOf(client),
              (std::vector<std::string>{"2 untouched", "-1 home network", "-1 COMPLETED",
                                        "3 secret", "-1 modem-17"}));
}

TEST_F(ModemClientQueries, passOnAnyNumberAndWholeFieldsWithoutNul) {
    ModemState state = freshState();
    state.connectivityType = -9;
    state.wifiEncryptionType = 77;
    setText(state.wifiSsid, std::string(33, 's'));
    setText(state.wifiPassword, std::string(32, 'p'));
    setText(state.hostname, std::string(32, 'h'));
    setText(state.wifiConnectionState, std::string(32, 'c'));
    server.state.publish(state);
    EXPECT_EQ(answersOf(client),
              (std::vector<std::string>{"-9 untouched", "-1 " + std::string(33, 's'),
                                        "-1 " + std::string(32, 'c'), "77 " + std::string(32, 'p'),
                                        "-1 " + std::string(32, 'h')}));
}

TEST_F(ModemClientQueries, failAndLeaveTheirOutputsWhileNotConnected) {
    server.state.publish(freshState());
    ModemClient other;
    EXPECT_EQ(answersOf(other), fiveFailures);
    client.disconnect();
    EXPECT_EQ(answersOf(client), fiveFailures);
}

TEST_F(ModemClientQueries, failAndLeaveTheirOutputsOnAStaleState) {
    server.publishAt(secondsNow() - 301);
    EXPECT_EQ(answersOf(client), fiveFailures);
}

TEST_F(ModemClientQueries, returnTheFieldsOfAnAllZeroRecordOnEveryLaterInvalidRead) {
    server.state.publish(freshState());
    invalidate(server.state);
    EXPECT_FALSE(client.getConnectivityType(number));
    EXPECT_EQ(answersOf(client),
              (std::vector<std::string>{"0 untouched", "-1 ", "-1 ", "0 ", "-1 "}));
}

TEST_F(ModemClientQueries, failOnTheFirstInvalidReadAfterAValidOne) {
    EXPECT_FALSE(client.getWifiSSID(text));
    EXPECT_TRUE(client.getWifiSSID(text));
    server.state.publish(freshState());
    EXPECT_TRUE(client.getWifiSSID(text));
    EXPECT_EQ(text, "home network");
    invalidate(server.state);
    EXPECT_FALSE(client.getWifiSSID(text));
    EXPECT_TRUE(client.getWifiSSID(text));
    EXPECT_EQ(text, "");
}

TEST_F(ModemClientQueries, rememberAnInvalidReadAcrossAStaleOne) {
    EXPECT_FALSE(client.getWifiSSID(text));
    server.publishAt(secondsNow() - 1000);
    EXPECT_FALSE(client.getWifiSSID(text));
    invalidate(server.state);
    EXPECT_TRUE(client.getWifiSSID(text));
    EXPECT_EQ(text, "");
}

TEST_F(ModemClientQueries, rememberAnInvalidReadAcrossReconnecting) {
    EXPECT_FALSE(client.getWifiSSID(text));
    ASSERT_TRUE(client.connect());
    EXPECT_TRUE(client.getWifiSSID(text));
}

// The record is read twice, and between the two the server may write.
TEST_F(ModemClientQueries, mayPairAPasswordAndATypeFromTwoWritesOfTheServer) {
    ModemState one = freshState();
    setText(one.wifiPassword, "one");
    one.wifiEncryptionType = 1;
    ModemState two = freshState();
    setText(two.wifiPassword, "two");
    two.wifiEncryptionType = 2;
    server.state.publish(one);
    afterNextUnlock([&] { server.state.publish(two); });
    EXPECT_TRUE(client.getWifiPasswordAndEncryptionType(number, text));
    EXPECT_EQ(text, "one");
    EXPECT_EQ(number, 2);
}

// Each output is written after the read that feeds it.
TEST_F(ModemClientQueries, returnThePasswordEvenWhenTheTypeCannotBeReadAnyMore) {
    server.state.publish(freshState());
    afterNextUnlock([&] { invalidate(server.state); });
    EXPECT_FALSE(client.getWifiPasswordAndEncryptionType(number, text));
    EXPECT_EQ(text, "secret");
    EXPECT_EQ(number, -1);
}

TEST(ModemClientQueriesLog, showsAMissingConnectionInTheTwoLoggingQueriesEveryTime) {
    const Result result = run(roleCommand("queryUnconnected", {}, loggingFrom("trace")));
    const std::string once = passwordRecord(notConnected) + hostnameRecord(notConnected);
    EXPECT_EQ(masked(result.output), once + once);
}

TEST(ModemClientQueriesLog, showsAnUnreadableStateOnce) {
    const Result result = run(roleCommand("queryConnected", {}, loggingFrom("trace")));
    EXPECT_EQ(result.status.code(), 0);
    EXPECT_EQ(masked(result.output), hostnameRecord(unreadable));
}

TEST(ModemClientQueriesLog, showsAStaleStateEveryTime) {
    PublishedServer server;
    ModemState state = freshState();
    state.timestamp = secondsNow() - 301;
    server.state.publish(state);
    const Result result = run(roleCommand("queryConnected", {}, loggingFrom("trace")));
    EXPECT_EQ(result.status.code(), 0);
    EXPECT_EQ(masked(result.output),
              hostnameRecord(stale) + passwordRecord(stale) + hostnameRecord(stale));
}

TEST(ModemClientQueriesLog, mayBeLostWhenMemoryRunsOut) {
    const Result result = run(roleCommand(
        "queryWithoutMemory", {}, {{"VRAX_LOG_LEVEL", "fatal"}, {"VRAX_LOG_TYPE", "inmemory"}}));
    EXPECT_EQ(result.status.code(), 0) << result.errors;
}
