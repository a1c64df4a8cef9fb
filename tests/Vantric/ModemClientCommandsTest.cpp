#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "Vantric/ModemClient.h"
#include "tests/Vantric/LogTranscript.h"
#include "tests/support/Allocations.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/Roles.h"

namespace {

using com_qel::Orvane::Vantric::ModemClient;
using namespace vantric_test;

constexpr int32_t lowest = std::numeric_limits<int32_t>::min();
constexpr std::size_t largestPayload = 4088;

class ModemClientCommands : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(client.connect()); }

    PublishedServer server;
    ModemClient client;
};

const RoleRegistration sender("sendEverythingTwice", [](const auto&) {
    ModemClient client;
    for (int round = 0; round < 2; ++round) {
        client.setConnectivityType(1);
        client.setConnectivityType(3);
        client.setWifiSSID("ssid");
        client.setWifiPasswordAndEncryptionType(2, "password");
        client.setConfig("file");
        client.sendTextCommand(std::string(5000, 'x'));
        client.sendTextPairCommand("a", "b");
        client.setWifiConnection("ssid", 2, "password");
        client.setWifiConnectionRadius("ssid", 4, "user", "password");
        if (!client.connect()) {
            return 1;
        }
    }
    return 0;
});

}  // namespace

TEST_F(ModemClientCommands, askForWifi) {
    EXPECT_TRUE(client.setConnectivityType(1));
    EXPECT_EQ(server.takeFrames(), (Frames{{5, ""}}));
}

TEST_F(ModemClientCommands, askForTheCarrier) {
    EXPECT_TRUE(client.setConnectivityType(2));
    EXPECT_EQ(server.takeFrames(), (Frames{{6, ""}}));
}

TEST_F(ModemClientCommands, askForNothingWhenNoConnectivityIsWanted) {
    EXPECT_TRUE(client.setConnectivityType(0));
    EXPECT_TRUE(server.takeFrames().empty());
}

TEST_F(ModemClientCommands, refuseAnyOtherConnectivity) {
    for (const int32_t type : {3, -1, lowest, std::numeric_limits<int32_t>::max()}) {
        EXPECT_FALSE(client.setConnectivityType(type)) << type;
    }
    EXPECT_TRUE(server.takeFrames().empty());
}

TEST_F(ModemClientCommands, sendTheNetworkName) {
    EXPECT_TRUE(client.setWifiSSID("my network"));
    EXPECT_EQ(server.takeFrames(), (Frames{{7, "my network"}}));
}

TEST_F(ModemClientCommands, sendThePasswordBehindItsEncryption) {
    EXPECT_TRUE(client.setWifiPasswordAndEncryptionType(2, "abcdef"));
    EXPECT_TRUE(client.setWifiPasswordAndEncryptionType(0, "0"));
    EXPECT_EQ(server.takeFrames(), (Frames{{8, "2,abcdef"}, {8, "0,0"}}));
}

TEST_F(ModemClientCommands, sendTheConfigurationFile) {
    EXPECT_TRUE(client.setConfig("/var/backup, old/config.bin"));
    EXPECT_EQ(server.takeFrames(), (Frames{{9, "/var/backup, old/config.bin"}}));
}

TEST_F(ModemClientCommands, sendAText) {
    EXPECT_TRUE(client.sendTextCommand("any text"));
    EXPECT_EQ(server.takeFrames(), (Frames{{12, "any text"}}));
}

TEST_F(ModemClientCommands, sendAPairOfTexts) {
    EXPECT_TRUE(client.sendTextPairCommand("first", "second"));
    EXPECT_EQ(server.takeFrames(), (Frames{{13, "first,second"}}));
}

TEST_F(ModemClientCommands, sendAConnection) {
    EXPECT_TRUE(client.setWifiConnection("home", 4, "pw"));
    EXPECT_EQ(server.takeFrames(), (Frames{{14, "home,4,pw"}}));
}

TEST_F(ModemClientCommands, sendARadiusConnection) {
    EXPECT_TRUE(client.setWifiConnectionRadius("home", 5, "user", "pw"));
    EXPECT_EQ(server.takeFrames(), (Frames{{15, "home,5,user,pw"}}));
}

TEST_F(ModemClientCommands, writeNegativeEncryptionsInDecimal) {
    client.setWifiPasswordAndEncryptionType(-7, "pw");
    client.setWifiPasswordAndEncryptionType(lowest, "pw");
    client.setWifiConnection("home", -1, "pw");
    client.setWifiConnectionRadius("home", -1, "user", "pw");
    EXPECT_EQ(
        server.takeFrames(),
        (Frames{{8, "-7,pw"}, {8, "-2147483648,pw"}, {14, "home,-1,pw"}, {15, "home,-1,user,pw"}}));
}

TEST_F(ModemClientCommands, joinFieldsWithoutEscapingTheirCommas) {
    client.sendTextPairCommand("a,b", "xy");
    client.setWifiPasswordAndEncryptionType(1, ",p,");
    client.setWifiConnection("a,b", 0, "c,d");
    client.setWifiConnectionRadius("a,b", 6, "c,d", "\"e\\,f\"");
    EXPECT_EQ(
        server.takeFrames(),
        (Frames{{13, "a,b,xy"}, {8, "1,,p,"}, {14, "a,b,0,c,d"}, {15, "a,b,6,c,d,\"e\\,f\""}}));
}

TEST_F(ModemClientCommands, sendEmptyFields) {
    client.setWifiSSID("");
    client.setWifiPasswordAndEncryptionType(0, "");
    client.setConfig("");
    client.sendTextCommand("");
    client.sendTextPairCommand("", "");
    client.setWifiConnection("", 0, "");
    client.setWifiConnectionRadius("", 0, "", "");
    EXPECT_EQ(
        server.takeFrames(),
        (Frames{{7, ""}, {8, "0,"}, {9, ""}, {12, ""}, {13, ","}, {14, ",0,"}, {15, ",0,,"}}));
}

TEST_F(ModemClientCommands, sendEveryByteOfATextAndNoNulBehindIt) {
    const std::string bytes("a\0b\n\xff", 5);
    client.sendTextCommand(bytes);
    EXPECT_EQ(server.takeFrames(), (Frames{{12, bytes}}));
}

TEST_F(ModemClientCommands, deliverTheLargestPayload) {
    const std::string text(largestPayload, 'x');
    EXPECT_TRUE(client.sendTextCommand(text));
    EXPECT_EQ(server.takeFrames(), (Frames{{12, text}}));
    const std::string first(largestPayload - 3, 'y');
    EXPECT_TRUE(client.sendTextPairCommand(first, "zz"));
    EXPECT_EQ(server.takeFrames(), (Frames{{13, first + ",zz"}}));
}

TEST_F(ModemClientCommands, dropALargerPayloadAndCallItSent) {
    EXPECT_TRUE(client.sendTextCommand(std::string(largestPayload + 1, 'x')));
    EXPECT_TRUE(client.sendTextPairCommand(std::string(largestPayload - 2, 'y'), "zz"));
    EXPECT_TRUE(client.setWifiSSID(std::string(100000, 'z')));
    EXPECT_TRUE(client.setWifiSSID("next"));
    EXPECT_EQ(server.takeFrames(), (Frames{{7, "next"}}));
}

TEST_F(ModemClientCommands, dropWhatTheFullChannelCannotTakeAndCallItSent) {
    const std::string half(2040, 'x');
    EXPECT_TRUE(client.sendTextCommand(half));
    EXPECT_TRUE(client.sendTextCommand(half));
    EXPECT_TRUE(client.setWifiSSID("too much"));
    EXPECT_TRUE(client.setConnectivityType(1));
    EXPECT_EQ(server.takeFrames(), (Frames{{12, half}, {12, half}}));
}

TEST_F(ModemClientCommands, arriveInTheOrderOfSending) {
    client.setWifiPasswordAndEncryptionType(1, "pw");
    client.setWifiSSID("home");
    client.setConnectivityType(1);
    client.setConfig("file");
    EXPECT_EQ(server.takeFrames(), (Frames{{8, "1,pw"}, {7, "home"}, {5, ""}, {9, "file"}}));
}

TEST_F(ModemClientCommands, reachTheServerFromTwoClientsAlike) {
    ModemClient other;
    ASSERT_TRUE(other.connect());
    client.setWifiSSID("one");
    other.setWifiSSID("two");
    client.setWifiSSID("three");
    EXPECT_EQ(server.takeFrames(), (Frames{{7, "one"}, {7, "two"}, {7, "three"}}));
}

TEST_F(ModemClientCommands, failUnsentBeforeConnecting) {
    ModemClient other;
    EXPECT_FALSE(other.setConnectivityType(1));
    EXPECT_FALSE(other.setConnectivityType(2));
    EXPECT_FALSE(other.setWifiSSID("x"));
    EXPECT_FALSE(other.setWifiPasswordAndEncryptionType(0, "0"));
    EXPECT_FALSE(other.setConfig("x"));
    EXPECT_FALSE(other.sendTextCommand("x"));
    EXPECT_FALSE(other.sendTextPairCommand("x", "y"));
    EXPECT_FALSE(other.setWifiConnection("x", 1, "y"));
    EXPECT_FALSE(other.setWifiConnectionRadius("x", 4, "y", "z"));
    EXPECT_TRUE(server.takeFrames().empty());
}

TEST_F(ModemClientCommands, askForNoConnectivityEvenUnconnected) {
    ModemClient other;
    EXPECT_TRUE(other.setConnectivityType(0));
    EXPECT_FALSE(other.setConnectivityType(3));
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
    EXPECT_EQ(result.status->code(), 0);
    EXPECT_EQ(result.output, "");
}
