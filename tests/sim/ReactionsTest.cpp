#include <gtest/gtest.h>

#include "sim/Reactions.h"
#include "tests/sim/ServerFixture.h"

namespace {

using namespace vantric_test;

// Every effect 100 ms after its command, draining included.
const char* const shortDelays = R"({
    "delays": {"switchConnectivity": 95, "joinNetwork": 95, "setEncryption": 95,
               "configurationStart": 95, "configurationLoad": 1000, "scan": 95, "refresh": 95,
               "connect": 95}})";

class Reactions : public testing::Test {
  protected:
    // Sends a command and stops right before its effect.
    void sendAndApproach(ModemCommand command, std::string_view payload = {}) {
        server.send(command, payload);
        server.advance(95ms);
    }

    void letItHappen() { server.advance(5ms); }

    void sendAndWait(ModemCommand command, std::string_view payload = {}) {
        sendAndApproach(command, payload);
        letItHappen();
    }

    void expectMalformed(ModemCommand command, std::string_view payload) {
        const auto state = *server.state();
        const auto extended = *server.extended();
        const auto networks = *server.networks();
        server.send(command, payload);
        server.advance(500ms);
        EXPECT_EQ(server.lines().back().rfind("malformed ", 0), 0U) << payload;
        EXPECT_EQ(std::string_view(&state.wifiSsid[0], sizeof(state) - 8),
                  std::string_view(&server.state()->wifiSsid[0], sizeof(state) - 8));
        EXPECT_EQ(int32_t(state.connectivityType), int32_t(server.state()->connectivityType));
        EXPECT_EQ(int32_t(extended.updateCounter), int32_t(server.extended()->updateCounter));
        EXPECT_EQ(int32_t(networks.updateCounter), int32_t(server.networks()->updateCounter));
    }

    ServerFixture server{shortDelays};
};

TEST_F(Reactions, switchToWifiAfterTheDelay) {
    sendAndApproach(ModemCommand::SwitchToWifi);
    EXPECT_EQ(int32_t(server.state()->connectivityType), 2);
    letItHappen();
    EXPECT_EQ(int32_t(server.state()->connectivityType), 1);
}

TEST_F(Reactions, switchToCarrierAfterTheDelay) {
    sendAndWait(ModemCommand::SwitchToWifi);
    sendAndApproach(ModemCommand::SwitchToCarrier);
    EXPECT_EQ(int32_t(server.state()->connectivityType), 1);
    letItHappen();
    EXPECT_EQ(int32_t(server.state()->connectivityType), 2);
}

TEST_F(Reactions, obeyTheLastOfTwoSwitches) {
    server.send(ModemCommand::SwitchToWifi);
    server.send(ModemCommand::SwitchToCarrier);
    server.advance(1s);
    EXPECT_EQ(int32_t(server.state()->connectivityType), 2);
}

TEST_F(Reactions, joinANetworkInBothStates) {
    sendAndApproach(ModemCommand::SetWifiSsid, "café, upstairs");
    EXPECT_EQ(fieldText(server.state()->wifiSsid), "home");
    letItHappen();
    EXPECT_EQ(fieldText(server.state()->wifiSsid), "café, upstairs");
    EXPECT_EQ(fieldText(server.extended()->wifiSsid), "café, upstairs");
}

TEST_F(Reactions, joinTheEmptyName) {
    sendAndWait(ModemCommand::SetWifiSsid, "");
    EXPECT_EQ(fieldText(server.state()->wifiSsid), "");
}

TEST_F(Reactions, cutLongTextsToLeaveANulInTheirFields) {
    sendAndWait(ModemCommand::SetWifiSsid, std::string(100, 'x'));
    EXPECT_EQ(fieldText(server.state()->wifiSsid), std::string(32, 'x'));
    EXPECT_EQ(fieldText(server.extended()->wifiSsid), std::string(35, 'x'));
    sendAndWait(ModemCommand::SetWifiPasswordAndEncryptionType, "1," + std::string(100, 'p'));
    EXPECT_EQ(fieldText(server.state()->wifiPassword), std::string(31, 'p'));
    EXPECT_EQ(int32_t(server.state()->wifiEncryptionType), 1);
}

TEST_F(Reactions, setEncryptionAndPassword) {
    sendAndApproach(ModemCommand::SetWifiPasswordAndEncryptionType, "3,a,b");
    EXPECT_EQ(int32_t(server.state()->wifiEncryptionType), 2);
    letItHappen();
    EXPECT_EQ(int32_t(server.state()->wifiEncryptionType), 3);
    EXPECT_EQ(fieldText(server.state()->wifiPassword), "a,b");
    EXPECT_EQ(int32_t(server.extended()->wifiEncryptionType), 3);
    EXPECT_EQ(fieldText(server.extended()->wifiEncryptionName), "WPA+WPA2 (PSK)");
}

TEST_F(Reactions, forgetTheNetworkOnRequest) {
    sendAndWait(ModemCommand::SetWifiConnection, "home,2,pw");
    sendAndApproach(ModemCommand::SetWifiPasswordAndEncryptionType, "0,0");
    EXPECT_EQ(fieldText(server.state()->wifiPassword), "pw");
    letItHappen();
    EXPECT_EQ(fieldText(server.state()->wifiPassword), "");
    EXPECT_EQ(int32_t(server.state()->wifiEncryptionType), 0);
    EXPECT_EQ(fieldText(server.state()->wifiConnectionState), "N/A");
}

TEST_F(Reactions, keepTheConnectionStateWhenOnlyTheEncryptionChanges) {
    sendAndWait(ModemCommand::SetWifiConnection, "home,2,pw");
    sendAndWait(ModemCommand::SetWifiPasswordAndEncryptionType, "0,pw");
    EXPECT_EQ(fieldText(server.state()->wifiPassword), "pw");
    EXPECT_EQ(fieldText(server.state()->wifiConnectionState), "Connected to home");
}

TEST_F(Reactions, loadAConfigurationThroughAnUnreadableStateToANewHostName) {
    sendAndApproach(ModemCommand::SetConfig, "backup/north.cfg");
    EXPECT_TRUE(server.state());
    letItHappen();
    EXPECT_FALSE(server.state());
    server.advance(995ms);
    EXPECT_FALSE(server.state());
    server.advance(5ms);
    ASSERT_TRUE(server.state());
    EXPECT_EQ(fieldText(server.state()->hostname), "north");
}

TEST_F(Reactions, keepTheStateUnreadableWhileAnyConfigurationIsLoaded) {
    server.send(ModemCommand::SetConfig, "one.cfg");
    server.advance(500ms);
    server.send(ModemCommand::SetConfig, "two.cfg");
    server.advance(1050ms);
    EXPECT_FALSE(server.state());
    server.advance(50ms);
    ASSERT_TRUE(server.state());
    EXPECT_EQ(fieldText(server.state()->hostname), "two");
}

TEST_F(Reactions, refreshStampsOfAnUnreadableStateStayUnreadable) {
    server.send(ModemCommand::SetConfig, "one.cfg");
    server.send(ModemCommand::SwitchToWifi);
    server.advance(150ms);
    EXPECT_FALSE(server.state());
    server.advance(1s);
    EXPECT_EQ(int32_t(server.state()->connectivityType), 1);
}

TEST(ReactionsOfAScenario, takeTheHostNameFromTheScenario) {
    ServerFixture server(R"({"configurationHostname": "fixed"})");
    server.send(ModemCommand::SetConfig, "north.cfg");
    server.advance(10s);
    EXPECT_EQ(fieldText(server.state()->hostname), "fixed");
}

TEST(ReactionsOfAScenario, takeTheConnectionStateFromTheScenario) {
    ServerFixture server(R"({"connectionState": "up"})");
    server.send(ModemCommand::SetWifiConnection, "home,2,pw");
    server.advance(10s);
    EXPECT_EQ(fieldText(server.state()->wifiConnectionState), "up");
}

TEST_F(Reactions, scanChangesTheCounterAndListsTheNetworks) {
    const int32_t before = server.networks()->updateCounter;
    sendAndApproach(ModemCommand::RequestWifiList);
    EXPECT_EQ(int32_t(server.networks()->updateCounter), before);
    letItHappen();
    EXPECT_NE(int32_t(server.networks()->updateCounter), before);
    EXPECT_EQ(int32_t(server.networks()->count), 3);
}

TEST_F(Reactions, refreshChangesTheCounterOfTheExtendedState) {
    const int32_t before = server.extended()->updateCounter;
    sendAndApproach(ModemCommand::RequestModemStatus);
    EXPECT_EQ(int32_t(server.extended()->updateCounter), before);
    letItHappen();
    EXPECT_NE(int32_t(server.extended()->updateCounter), before);
}

TEST(ReactionsOfAScenario, wrapTheLargestCounter) {
    ServerFixture server(R"({"extended": {"updateCounter": 2147483647}})");
    server.send(ModemCommand::RequestModemStatus);
    server.advance(1s);
    EXPECT_EQ(int32_t(server.extended()->updateCounter), INT32_MIN);
}

TEST_F(Reactions, connectToANetwork) {
    sendAndApproach(ModemCommand::SetWifiConnection, "office,1,p,w");
    EXPECT_EQ(fieldText(server.state()->wifiConnectionState), "N/A");
    letItHappen();
    EXPECT_EQ(fieldText(server.state()->wifiSsid), "office");
    EXPECT_EQ(int32_t(server.state()->wifiEncryptionType), 1);
    EXPECT_EQ(fieldText(server.state()->wifiPassword), "p,w");
    EXPECT_EQ(fieldText(server.state()->wifiConnectionState), "Connected to office");
    EXPECT_EQ(fieldText(server.extended()->wifiSsid), "office");
    EXPECT_EQ(fieldText(server.extended()->wifiEncryptionName), "WPA(PSK)");
}

TEST_F(Reactions, connectToANetworkWithAUserName) {
    sendAndWait(ModemCommand::SetWifiConnectionRadius, "office,5,user,p,w");
    EXPECT_EQ(fieldText(server.state()->wifiSsid), "office");
    EXPECT_EQ(int32_t(server.state()->wifiEncryptionType), 5);
    EXPECT_EQ(fieldText(server.state()->wifiPassword), "p,w");
    EXPECT_EQ(fieldText(server.state()->wifiConnectionState), "Connected to office");
}

TEST_F(Reactions, doNothingAboutTexts) {
    const auto before = *server.state();
    sendAndWait(ModemCommand::SendText, "hello");
    sendAndWait(ModemCommand::SendTextPair, "a,b");
    server.advance(5s);
    EXPECT_EQ(std::string_view(&before.wifiSsid[0], sizeof(before) - 8),
              std::string_view(&server.state()->wifiSsid[0], sizeof(before) - 8));
    EXPECT_EQ(server.lines().size(), 2U);
}

TEST_F(Reactions, reportMalformedPayloadsAndChangeNothing) {
    expectMalformed(ModemCommand::SwitchToWifi, "x");
    expectMalformed(ModemCommand::SwitchToCarrier, "x");
    expectMalformed(ModemCommand::SetWifiPasswordAndEncryptionType, "abc");
    expectMalformed(ModemCommand::SetConfig, "");
    expectMalformed(ModemCommand::RequestWifiList, "x");
    expectMalformed(ModemCommand::RequestModemStatus, "x");
    expectMalformed(ModemCommand::SetWifiConnection, "home,none,pw");
    expectMalformed(ModemCommand::SetWifiConnectionRadius, "home,4,user");
}

TEST_F(Reactions, sayWhatAMalformedPayloadShouldHaveBeen) {
    server.send(ModemCommand::SetWifiConnection, "home");
    server.advance(5ms);
    EXPECT_EQ(server.lines(),
              (std::vector<std::string>{
                  R"(frame 14 SetWifiConnection 4 "home")",
                  "malformed SetWifiConnection: expected ssid,encryption type,password"}));
}

}  // namespace
