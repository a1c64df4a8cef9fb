#include <gtest/gtest.h>

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

TEST_F(Reactions, takeOtherPasswordsAndTypesForNoRequestToForget) {
    sendAndWait(ModemCommand::SetWifiConnection, "home,2,pw");
    for (const auto& [payload, password] :
         {std::pair("0,", ""), std::pair("0,00", "00"), std::pair("-2147483648,0", "0")}) {
        sendAndWait(ModemCommand::SetWifiPasswordAndEncryptionType, payload);
        EXPECT_EQ(fieldText(server.state()->wifiPassword), password);
        EXPECT_EQ(fieldText(server.state()->wifiConnectionState), "Connected to home");
    }
    EXPECT_EQ(int32_t(server.state()->wifiEncryptionType), INT32_MIN);
}

TEST_F(Reactions, loadAConfigurationThroughAnUnreadableStateToANewHostName) {
    sendAndApproach(ModemCommand::SetConfig, "backup/north site.v2.cfg");
    EXPECT_TRUE(server.state());
    letItHappen();
    EXPECT_FALSE(server.state());
    server.advance(995ms);
    EXPECT_FALSE(server.state());
    server.advance(5ms);
    ASSERT_TRUE(server.state());
    EXPECT_EQ(fieldText(server.state()->hostname), "north site.v2");
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

TEST(ReactionsOfAScenario, takeTheirTextsFromIt) {
    ServerFixture server(R"({"configurationHostname": "fixed", "connectionState": "up"})");
    server.send(ModemCommand::SetConfig, "north.cfg");
    server.send(ModemCommand::SetWifiConnection, "home,2,pw");
    server.advance(10s);
    EXPECT_EQ(fieldText(server.state()->hostname), "fixed");
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
    for (const ModemCommand command :
         {ModemCommand::SwitchToWifi, ModemCommand::SwitchToCarrier, ModemCommand::RequestWifiList,
          ModemCommand::RequestModemStatus}) {
        expectMalformed(command, "x");
    }
    for (const char* payload :
         {"", "2", "x,y", ",y", "2 ,y", " 2,y", "2x,y", "+2,y", "0x2,y", "2147483648,y"}) {
        expectMalformed(ModemCommand::SetWifiPasswordAndEncryptionType, payload);
    }
    for (const char* payload : {"", "folder/"}) {
        expectMalformed(ModemCommand::SetConfig, payload);
    }
    for (const char* payload : {"", "home", "home,4", "home,none,pw", "a,b,4,pw"}) {
        expectMalformed(ModemCommand::SetWifiConnection, payload);
    }
    for (const char* payload : {"home,4,user", "home,x,user,pw"}) {
        expectMalformed(ModemCommand::SetWifiConnectionRadius, payload);
    }
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
