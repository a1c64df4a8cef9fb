#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "Vantric/ModemClient.h"
#include "tests/support/Allocations.h"
#include "tests/support/LogTranscript.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/Roles.h"

namespace {

using com_qel::Orvane::Vantric::ModemClient;
using namespace vantric_test;

constexpr int32_t lowestType = std::numeric_limits<int32_t>::min();
constexpr std::size_t largestPayload = 4088;

class ModemClientCommands : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(client.connect()); }

    PublishedServer server;
    ModemClient client;
};

// A call, and the frame that the server finds.
struct Row {
    bool (*send)(ModemClient& client);
    Frame frame;
};

const std::string everyKindOfByte("a\0b\n\xff", 5);

const Row commandRows[] = {
    {[](ModemClient& client) { return client.setConnectivityType(1); }, {5, ""}},
    {[](ModemClient& client) { return client.setConnectivityType(2); }, {6, ""}},
    {[](ModemClient& client) { return client.setWifiSSID("my network"); }, {7, "my network"}},
    {[](ModemClient& client) { return client.setWifiPasswordAndEncryptionType(2, "abcdef"); },
     {8, "2,abcdef"}},
    {[](ModemClient& client) { return client.setWifiPasswordAndEncryptionType(lowestType, "pw"); },
     {8, "-2147483648,pw"}},
    {[](ModemClient& client) { return client.setConfig("/var/a, b/config.bin"); },
     {9, "/var/a, b/config.bin"}},
    {[](ModemClient& client) { return client.sendTextCommand(everyKindOfByte); },
     {12, everyKindOfByte}},
    {[](ModemClient& client) { return client.sendTextPairCommand("a,b", "xy"); }, {13, "a,b,xy"}},
    {[](ModemClient& client) { return client.setWifiConnection("home", -1, "c,d"); },
     {14, "home,-1,c,d"}},
    {[](ModemClient& client) { return client.setWifiConnectionRadius("home", 5, "user", "pw"); },
     {15, "home,5,user,pw"}},
    {[](ModemClient& client) { return client.setWifiConnectionRadius("", 0, "\"e\\,f\"", ""); },
     {15, ",0,\"e\\,f\","}},
    {[](ModemClient& client) { return client.setWifiSSID(""); }, {7, ""}},
    {[](ModemClient& client) { return client.sendTextPairCommand("", ""); }, {13, ","}},
};

const RoleRegistration sender("sendEverythingTwice", [](const auto&) {
    ModemClient client;
    for (int round = 0; round < 2; ++round) {
        for (const Row& row : commandRows) {
            row.send(client);
        }
        client.setConnectivityType(3);
        client.sendTextCommand(std::string(largestPayload + 1, 'x'));
        if (!client.connect()) {
            return 1;
        }
    }
    return 0;
});

}  // namespace

TEST_F(ModemClientCommands, sendTheirFieldsJoinedWithoutEscapingInTheOrderOfTheCalls) {
    Frames expected;
    for (const Row& row : commandRows) {
        EXPECT_TRUE(row.send(client)) << row.frame;
        expected.push_back(row.frame);
    }
    EXPECT_EQ(server.takeFrames(), expected);
}

TEST_F(ModemClientCommands, askForNothingWhenNoConnectivityIsWanted) {
    EXPECT_TRUE(client.setConnectivityType(0));
    EXPECT_TRUE(server.takeFrames().empty());
}

TEST_F(ModemClientCommands, refuseAnyOtherConnectivity) {
    for (const int32_t type : {3, -1, lowestType, std::numeric_limits<int32_t>::max()}) {
        EXPECT_FALSE(client.setConnectivityType(type)) << type;
    }
    EXPECT_TRUE(server.takeFrames().empty());
}

TEST_F(ModemClientCommands, deliverTheLargestPayload) {
    const std::string first(largestPayload - 3, 'y');
    EXPECT_TRUE(client.sendTextPairCommand(first, "zz"));
    EXPECT_EQ(server.takeFrames(), (Frames{{13, first + ",zz"}}));
}

TEST_F(ModemClientCommands, dropALargerPayloadAndCallItSent) {
    EXPECT_TRUE(client.sendTextPairCommand(std::string(largestPayload - 2, 'y'), "zz"));
    EXPECT_TRUE(client.setWifiSSID(std::string(100000, 'z')));
    EXPECT_TRUE(client.setWifiSSID("next"));
    EXPECT_EQ(server.takeFrames(), (Frames{{7, "next"}}));
}

TEST_F(ModemClientCommands, dropWhatTheFullChannelCannotTakeAndCallItSent) {
    const std::string filling(largestPayload, 'x');
    EXPECT_TRUE(client.sendTextCommand(filling));
    EXPECT_TRUE(client.setConnectivityType(1));
    EXPECT_EQ(server.takeFrames(), (Frames{{12, filling}}));
}

TEST_F(ModemClientCommands, reachTheServerFromTwoClientsAlike) {
    ModemClient other;
    ASSERT_TRUE(other.connect());
    client.setWifiSSID("one");
    other.setWifiSSID("two");
    client.setWifiSSID("three");
    EXPECT_EQ(server.takeFrames(), (Frames{{7, "one"}, {7, "two"}, {7, "three"}}));
}

TEST_F(ModemClientCommands, failUnsentWhileNotConnected) {
    ModemClient other;
    for (const Row& row : commandRows) {
        EXPECT_FALSE(row.send(other)) << row.frame;
    }
    EXPECT_TRUE(other.setConnectivityType(0));
    client.disconnect();
    EXPECT_FALSE(client.setWifiSSID("x"));
    EXPECT_TRUE(server.takeFrames().empty());
}

TEST_F(ModemClientCommands, failUnsentWhenMemoryRunsOut) {
    const std::string name(100, 'n');
    std::size_t failing = 0;
    bool isSent = false;
    while (!isSent) {
        const Allocations allocations(++failing);
        isSent = client.setWifiConnectionRadius(name, 4, name, name);
    }
    EXPECT_GT(failing, 1U);
    EXPECT_EQ(server.takeFrames(), (Frames{{15, name + ",4," + name + "," + name}}));
}

TEST(ModemClientCommandsLog, staysEmptyWhateverHappens) {
    const Result result = run(roleCommand("sendEverythingTwice", {}, loggingFrom("trace")));
    EXPECT_EQ(result.status.code(), 0);
    EXPECT_EQ(result.output, "");
}
