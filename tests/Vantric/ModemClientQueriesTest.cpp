#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "Vantric/ModemClient.h"
#include "tests/Vantric/AfterNextUnlock.h"
#include "tests/Vantric/LogTranscript.h"
#include "tests/support/Allocations.h"
#include "tests/support/ProcessFacts.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/RawSemaphore.h"
#include "tests/support/Roles.h"

namespace {

using com_qel::Orvane::Vantric::ModemClient;
using com_qel::Orvane::Vantric::ModemState;
using namespace vantric_test;

constexpr const char* contentsLocks[] = {"ModemStateShmLock", "ModemStateExLock",
                                         "ModemWifiListLock", "ModemCommandsShmLock"};

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

class ModemClientQueries : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(client.connect()); }

    PublishedServer server;
    ModemClient client;
    int32_t number = -1;
    std::string text = "untouched";
};

void queryEverything(ModemClient& client) {
    int32_t number = 0;
    std::string text;
    client.getConnectivityType(number);
    client.getWifiSSID(text);
    client.getWifiConnectionState(text);
    client.getWifiPasswordAndEncryptionType(number, text);
    client.getHostname(text);
}

const RoleRegistration unconnected("queryUnconnected", [](const auto&) {
    ModemClient client;
    queryEverything(client);
    queryEverything(client);
    return 0;
});

const RoleRegistration connected("queryConnected", [](const auto&) {
    ModemClient client;
    if (!client.connect()) {
        return 1;
    }
    std::string hostname;
    client.getHostname(hostname);
    queryEverything(client);
    return 0;
});

const RoleRegistration passwordReader("queryPasswordFirst", [](const auto&) {
    ModemClient client;
    int32_t type = 0;
    std::string password;
    return client.connect() && !client.getWifiPasswordAndEncryptionType(type, password) ? 0 : 1;
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
    EXPECT_TRUE(client.getConnectivityType(number));
    EXPECT_EQ(number, 2);
    EXPECT_TRUE(client.getWifiSSID(text));
    EXPECT_EQ(text, "home network");
    EXPECT_TRUE(client.getWifiPasswordAndEncryptionType(number, text));
    EXPECT_EQ(number, 3);
    EXPECT_EQ(text, "secret");
    EXPECT_TRUE(client.getHostname(text));
    EXPECT_EQ(text, "modem-17");
    EXPECT_TRUE(client.getWifiConnectionState(text));
    EXPECT_EQ(text, "COMPLETED");
}

TEST_F(ModemClientQueries, seeEveryNewState) {
    for (const char* hostname : {"first", "second", ""}) {
        ModemState state = freshState();
        setText(state.hostname, hostname);
        server.state.publish(state);
        EXPECT_TRUE(client.getHostname(text));
        EXPECT_EQ(text, hostname);
    }
}

TEST_F(ModemClientQueries, passOnValuesOutsideTheEnumerations) {
    ModemState state = freshState();
    state.connectivityType = -9;
    state.wifiEncryptionType = 77;
    server.state.publish(state);
    EXPECT_TRUE(client.getConnectivityType(number));
    EXPECT_EQ(number, -9);
    EXPECT_TRUE(client.getWifiPasswordAndEncryptionType(number, text));
    EXPECT_EQ(number, 77);
}

TEST_F(ModemClientQueries, endTextsWithoutNulAtTheFieldsEnd) {
    ModemState state = freshState();
    setText(state.wifiSsid, std::string(33, 's'));
    setText(state.wifiPassword, std::string(32, 'p'));
    setText(state.hostname, std::string(32, 'h'));
    setText(state.wifiConnectionState, std::string(32, 'c'));
    server.state.publish(state);
    EXPECT_TRUE(client.getWifiSSID(text));
    EXPECT_EQ(text, std::string(33, 's'));
    EXPECT_TRUE(client.getWifiPasswordAndEncryptionType(number, text));
    EXPECT_EQ(text, std::string(32, 'p'));
    EXPECT_TRUE(client.getHostname(text));
    EXPECT_EQ(text, std::string(32, 'h'));
    EXPECT_TRUE(client.getWifiConnectionState(text));
    EXPECT_EQ(text, std::string(32, 'c'));
}

TEST_F(ModemClientQueries, failWithoutTouchingTheirOutputsBeforeConnecting) {
    server.state.publish(freshState());
    ModemClient other;
    EXPECT_FALSE(other.getConnectivityType(number));
    EXPECT_FALSE(other.getWifiSSID(text));
    EXPECT_FALSE(other.getWifiPasswordAndEncryptionType(number, text));
    EXPECT_FALSE(other.getHostname(text));
    EXPECT_FALSE(other.getWifiConnectionState(text));
    EXPECT_EQ(number, -1);
    EXPECT_EQ(text, "untouched");
}

TEST_F(ModemClientQueries, failWithoutTouchingTheirOutputsOnAStaleState) {
    server.publishAt(secondsNow() - 301);
    EXPECT_FALSE(client.getConnectivityType(number));
    EXPECT_FALSE(client.getWifiSSID(text));
    EXPECT_FALSE(client.getWifiPasswordAndEncryptionType(number, text));
    EXPECT_FALSE(client.getHostname(text));
    EXPECT_FALSE(client.getWifiConnectionState(text));
    EXPECT_EQ(number, -1);
    EXPECT_EQ(text, "untouched");
}

TEST_F(ModemClientQueries, refuseAStaleStateEveryTime) {
    server.publishAt(secondsNow() - 1000);
    for (int attempt = 0; attempt < 3; ++attempt) {
        EXPECT_FALSE(client.getWifiSSID(text));
    }
    server.state.publish(freshState());
    EXPECT_TRUE(client.getWifiSSID(text));
}

TEST_F(ModemClientQueries, failOnAnUnpublishedStateFirstAndThenReturnZeros) {
    EXPECT_FALSE(client.getWifiSSID(text));
    EXPECT_EQ(text, "untouched");
    EXPECT_TRUE(client.getWifiSSID(text));
    EXPECT_EQ(text, "");
}

TEST_F(ModemClientQueries, returnTheFieldsOfAnAllZeroRecordOnEveryLaterInvalidRead) {
    server.state.publish(freshState());
    invalidate(server.state);
    EXPECT_FALSE(client.getConnectivityType(number));
    EXPECT_TRUE(client.getConnectivityType(number));
    EXPECT_EQ(number, 0);
    text = "untouched";
    EXPECT_TRUE(client.getHostname(text));
    EXPECT_EQ(text, "");
    text = "untouched";
    EXPECT_TRUE(client.getWifiConnectionState(text));
    EXPECT_EQ(text, "");
    text = "untouched";
    number = -1;
    EXPECT_TRUE(client.getWifiPasswordAndEncryptionType(number, text));
    EXPECT_EQ(number, 0);
    EXPECT_EQ(text, "");
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

TEST_F(ModemClientQueries, acceptNothingButVersionOneAndValidOne) {
    const struct {
        uint32_t version;
        uint8_t valid;
    } refused[] = {{0, 0}, {0, 1}, {2, 1}, {0x01000000, 1}, {1, 0}, {1, 2}, {1, 255}};
    for (const auto& header : refused) {
        server.state.publish(freshState());
        ASSERT_TRUE(client.getWifiSSID(text));
        setHeader(server.state, header.version, header.valid);
        EXPECT_FALSE(client.getWifiSSID(text)) << header.version << " " << int{header.valid};
    }
}

TEST_F(ModemClientQueries, countAnInvalidReadAsTheFirstAfterAStaleOne) {
    server.publishAt(secondsNow() - 1000);
    EXPECT_FALSE(client.getWifiSSID(text));
    invalidate(server.state);
    EXPECT_FALSE(client.getWifiSSID(text));
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

TEST_F(ModemClientQueries, waitForTheServerToFinishWriting) {
    server.state.publish(freshState());
    auto& contentsLock = server.state.accessor().lock();
    contentsLock.lock();
    {
        const BackgroundAction reader([&] { client.getWifiSSID(text); });
        EXPECT_TRUE(reader.blocks());
        setText(server.state.accessor().memory()->record.wifiSsid, "written meanwhile");
        contentsLock.unlock();
    }
    EXPECT_EQ(text, "written meanwhile");
}

TEST_F(ModemClientQueries, leaveEveryLockFree) {
    const std::function<void()> situations[] = {
        [] {},
        [&] { server.state.publish(freshState()); },
        [&] { server.publishAt(0); },
        [&] { invalidate(server.state); },
    };
    for (const auto& arrange : situations) {
        arrange();
        queryEverything(client);
        for (const char* name : contentsLocks) {
            EXPECT_EQ(semaphoreValue(name), 1) << name;
        }
    }
}

TEST(ModemClientQueriesLog, showsAMissingConnectionInTheTwoLoggingQueriesEveryTime) {
    const Result result = run(roleCommand("queryUnconnected", {}, loggingFrom("trace")));
    const std::string once = passwordRecord(notConnected) + hostnameRecord(notConnected);
    EXPECT_EQ(masked(result.output), once + once);
}

TEST(ModemClientQueriesLog, showsAnUnreadableStateOnce) {
    const Result result = run(roleCommand("queryConnected", {}, loggingFrom("trace")));
    EXPECT_EQ(result.status->code(), 0);
    EXPECT_EQ(masked(result.output), hostnameRecord(unreadable));
}

TEST(ModemClientQueriesLog, showsAnUnreadablePassword) {
    const Result result = run(roleCommand("queryPasswordFirst", {}, loggingFrom("trace")));
    EXPECT_EQ(result.status->code(), 0);
    EXPECT_EQ(masked(result.output), passwordRecord(unreadable));
}

TEST(ModemClientQueriesLog, showsAStaleStateEveryTime) {
    PublishedServer server;
    ModemState state = freshState();
    state.timestamp = secondsNow() - 301;
    server.state.publish(state);
    const Result result = run(roleCommand("queryConnected", {}, loggingFrom("trace")));
    EXPECT_EQ(result.status->code(), 0);
    EXPECT_EQ(masked(result.output),
              hostnameRecord(stale) + passwordRecord(stale) + hostnameRecord(stale));
}

TEST(ModemClientQueriesLog, mayBeLostWhenMemoryRunsOut) {
    const Result result = run(roleCommand(
        "queryWithoutMemory", {}, {{"VRAX_LOG_LEVEL", "fatal"}, {"VRAX_LOG_TYPE", "inmemory"}}));
    EXPECT_EQ(result.status->code(), 0) << result.errors;
}
