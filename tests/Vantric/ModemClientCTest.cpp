#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "Vantric/ModemClientC.h"
#include "tests/Vantric/ScriptedClient.h"
#include "tests/support/Allocations.h"
#include "tests/support/PublishedServer.h"

extern "C" {
// In ModemClientCHeaderTest.c.
bool readWifiNameFromC(char* buffer, uint32_t* size);
}

namespace {

using namespace vantric_test;

constexpr uint32_t answerPatience = 30;  // seconds; far more than any answer here takes

class ModemClientC : public testing::Test {
  protected:
    ModemClientC() : handle(modemClientCreate()) {}
    ~ModemClientC() override { modemClientDestroy(handle); }

    void SetUp() override {
        ASSERT_NE(handle, nullptr);
        ASSERT_TRUE(modemClientConnect(handle));
    }

    void publishName(const std::string& name) {
        auto state = freshState();
        setText(state.wifiSsid, name);
        server.state.publish(state);
    }

    void answerWithNetworks(const std::vector<int32_t>& signalLevels) {
        server.wifiList.publish(wifiListOf({}, 1));
        server.answer([this, signalLevels](const Frame&) {
            server.wifiList.publish(wifiListOf(signalLevels, 2));
        });
    }

    void expectEveryCallFails(ModemClientHandle other) {
        WifiInfo network = {};
        ModemStatus status = {};
        uint32_t count = 1;
        EXPECT_FALSE(modemClientConnect(other));
        EXPECT_NO_THROW(modemClientDisconnect(other));
        EXPECT_FALSE(modemClientGetWifiSSID(other, buffer, &size));
        EXPECT_FALSE(modemClientSetWifiSSID(other, "x"));
        EXPECT_FALSE(modemClientSetWifiConnection(other, "x", 1, "y"));
        EXPECT_FALSE(modemClientSetWifiConnectionRadius(other, "x", 4, "y", "z"));
        EXPECT_FALSE(
            modemClientGetWifiAvailableListBlocking(other, &network, &count, answerPatience));
        EXPECT_FALSE(modemClientGetModemStatusBlocking(other, &status, answerPatience));
        EXPECT_FALSE(modemClientForgetWifiBlocking(other, answerPatience));
        EXPECT_FALSE(modemClientSetWifiConnectionBlocking(other, "x", 1, "y", answerPatience));
        EXPECT_FALSE(
            modemClientSetWifiConnectionRadiusBlocking(other, "x", 4, "y", "z", answerPatience));
        EXPECT_EQ(size, sizeof(buffer));
        EXPECT_EQ(count, 1U);
    }

    PublishedServer server;
    ModemClientHandle handle;
    char buffer[40] = "................";
    uint32_t size = sizeof(buffer);
};

}  // namespace

TEST_F(ModemClientC, createsAClientThatIsNotConnected) {
    ModemClientHandle other = modemClientCreate();
    ASSERT_NE(other, nullptr);
    EXPECT_FALSE(modemClientSetWifiSSID(other, "x"));
    EXPECT_EQ(attachedProducers(), 1U);
    modemClientDestroy(other);
}

TEST_F(ModemClientC, createsNoClientWhenMemoryRunsOut) {
    ModemClientHandle other = nullptr;
    std::size_t failing = 0;
    while (other == nullptr) {
        const Allocations allocations(++failing);
        other = modemClientCreate();
    }
    EXPECT_GT(failing, 1U);
    modemClientDestroy(other);
}

TEST_F(ModemClientC, releasesTheMemoryOfAConnectedClientWhenDestroyed) {
    ModemClientHandle other = modemClientCreate();
    ASSERT_TRUE(modemClientConnect(other));
    EXPECT_EQ(attachCount("ModemStateShm"), 3U);
    modemClientDestroy(other);
    EXPECT_EQ(attachCount("ModemStateShm"), 2U);
}

TEST_F(ModemClientC, leavesTheMemoryMappedWhenDisconnectedAndDestroyed) {
    ModemClientHandle other = modemClientCreate();
    ASSERT_TRUE(modemClientConnect(other));
    modemClientDisconnect(other);
    EXPECT_FALSE(modemClientSetWifiSSID(other, "x"));
    modemClientDestroy(other);
    EXPECT_EQ(attachCount("ModemStateShm"), 3U);
}

TEST_F(ModemClientC, ignoresANullHandleEverywhere) {
    modemClientDestroy(nullptr);
    expectEveryCallFails(nullptr);
}

TEST_F(ModemClientC, doesNothingWithAnyOtherNullArgument) {
    // Readable, so that a call that gets past its arguments succeeds or sends.
    publishName("home");
    server.extendedState.publish(someExtendedState(1));
    server.wifiList.publish(wifiListOf({1}, 1));
    WifiInfo network = {};
    uint32_t count = 1;
    EXPECT_FALSE(modemClientGetWifiSSID(handle, nullptr, &size));
    EXPECT_FALSE(modemClientGetWifiSSID(handle, buffer, nullptr));
    EXPECT_FALSE(modemClientSetWifiSSID(handle, nullptr));
    EXPECT_FALSE(modemClientSetWifiConnection(handle, nullptr, 1, "y"));
    EXPECT_FALSE(modemClientSetWifiConnection(handle, "x", 1, nullptr));
    EXPECT_FALSE(modemClientSetWifiConnectionRadius(handle, nullptr, 4, "y", "z"));
    EXPECT_FALSE(modemClientSetWifiConnectionRadius(handle, "x", 4, nullptr, "z"));
    EXPECT_FALSE(modemClientSetWifiConnectionRadius(handle, "x", 4, "y", nullptr));
    EXPECT_FALSE(modemClientGetWifiAvailableListBlocking(handle, nullptr, &count, answerPatience));
    EXPECT_FALSE(
        modemClientGetWifiAvailableListBlocking(handle, &network, nullptr, answerPatience));
    EXPECT_FALSE(modemClientGetModemStatusBlocking(handle, nullptr, answerPatience));
    EXPECT_FALSE(modemClientSetWifiConnectionBlocking(handle, nullptr, 1, "y", answerPatience));
    EXPECT_FALSE(modemClientSetWifiConnectionBlocking(handle, "x", 1, nullptr, answerPatience));
    EXPECT_FALSE(modemClientSetWifiConnectionRadiusBlocking(handle, nullptr, 4, "y", "z", 30));
    EXPECT_FALSE(modemClientSetWifiConnectionRadiusBlocking(handle, "x", 4, nullptr, "z", 30));
    EXPECT_FALSE(modemClientSetWifiConnectionRadiusBlocking(handle, "x", 4, "y", nullptr, 30));
    EXPECT_TRUE(server.takeFrames().empty());
    EXPECT_EQ(size, sizeof(buffer));
    EXPECT_EQ(count, 1U);
    EXPECT_STREQ(buffer, "................");
}

TEST_F(ModemClientC, letsNoExceptionOut) {
    ThrowingClient client;
    expectEveryCallFails(handleOf(client));
}

TEST_F(ModemClientC, copiesTheNameWithoutANulIntoABufferThatHoldsIt) {
    const struct {
        const char* name;
        uint32_t room;
        bool isCopied;
        uint32_t size;
        const char* buffer;
    } rows[] = {
        {"home", 40, true, 4, "home............"},
        {"home", 4, true, 4, "home............"},
        {"home", 3, false, 3, "................"},
        {"", 0, true, 0, "................"},
    };
    for (const auto& row : rows) {
        publishName(row.name);
        std::strcpy(buffer, "................");
        size = row.room;
        EXPECT_EQ(modemClientGetWifiSSID(handle, buffer, &size), row.isCopied) << row.room;
        EXPECT_EQ(size, row.size);
        EXPECT_STREQ(buffer, row.buffer);
    }
}

TEST_F(ModemClientC, leavesTheBufferUntouchedWhenTheNameCannotBeRead) {
    EXPECT_FALSE(modemClientGetWifiSSID(handle, buffer, &size));
    EXPECT_EQ(size, sizeof(buffer));
    EXPECT_STREQ(buffer, "................");
}

TEST_F(ModemClientC, sendsWithoutWaiting) {
    EXPECT_TRUE(modemClientSetWifiSSID(handle, "home"));
    EXPECT_TRUE(modemClientSetWifiConnection(handle, "home", 2, "pw"));
    EXPECT_TRUE(modemClientSetWifiConnectionRadius(handle, "home", -4, "user", ""));
    EXPECT_EQ(server.takeFrames(), (Frames{{7, "home"}, {14, "home,2,pw"}, {15, "home,-4,user,"}}));
}

TEST_F(ModemClientC, copiesTheStrongestNetworksThatTheArrayHolds) {
    answerWithNetworks({10, 50, 30});
    WifiInfo networks[3];
    std::memset(networks, 0x5a, sizeof(networks));
    const WifiInfo untouched = networks[2];
    uint32_t count = 2;
    EXPECT_TRUE(modemClientGetWifiAvailableListBlocking(handle, networks, &count, answerPatience));
    EXPECT_EQ(count, 2U);
    EXPECT_STREQ(networks[0].ssid, "network 1");
    EXPECT_EQ(networks[0].signalLevel, 50);
    EXPECT_EQ(networks[1].signalLevel, 30);
    EXPECT_EQ(std::memcmp(&networks[2], &untouched, sizeof(untouched)), 0);
}

TEST_F(ModemClientC, failsWithoutANetworkOrRoomForIt) {
    const struct {
        std::vector<int32_t> levels;
        uint32_t room;
        uint32_t count;
        bool isCopied;
    } rows[] = {{{10, 50}, 7, 2, true}, {{}, 1, 0, false}, {{10, 50}, 0, 0, false}};
    for (const auto& row : rows) {
        answerWithNetworks(row.levels);
        WifiInfo networks[7] = {};
        uint32_t count = row.room;
        EXPECT_EQ(modemClientGetWifiAvailableListBlocking(handle, networks, &count, answerPatience),
                  row.isCopied);
        EXPECT_EQ(count, row.count);
        EXPECT_EQ(networks[row.count].signalLevel, 0);
        server.takeFrames();
    }
}

TEST_F(ModemClientC, leavesTheCountUntouchedWhenTheScanFails) {
    server.wifiList.publish(wifiListOf({10}, 1));
    WifiInfo network = {};
    uint32_t count = 1;
    EXPECT_FALSE(modemClientGetWifiAvailableListBlocking(handle, &network, &count, 0));
    EXPECT_EQ(count, 1U);
}

TEST_F(ModemClientC, returnsTheStatus) {
    server.extendedState.publish(someExtendedState(1));
    server.answer([this](const Frame&) { server.extendedState.publish(someExtendedState(2)); });
    ModemStatus status = {};
    EXPECT_TRUE(modemClientGetModemStatusBlocking(handle, &status, answerPatience));
    EXPECT_EQ(status.carrierSignalLevel, -71);
    EXPECT_STREQ(status.wifiEncryptionName, "WPA2 (PSK)");
    EXPECT_EQ(server.takeFrames(), (Frames{{11, ""}}));
}

TEST_F(ModemClientC, leavesTheStatusUntouchedWhenTheRefreshFails) {
    server.extendedState.publish(someExtendedState(1));
    ModemStatus status;
    std::memset(&status, 0x5a, sizeof(status));
    const ModemStatus untouched = status;
    EXPECT_FALSE(modemClientGetModemStatusBlocking(handle, &status, 0));
    EXPECT_EQ(std::memcmp(&status, &untouched, sizeof(status)), 0);
}

TEST_F(ModemClientC, isUsableFromC) {
    publishName("home");
    EXPECT_TRUE(readWifiNameFromC(buffer, &size));
    EXPECT_EQ(std::string(buffer, size), "home");
}
