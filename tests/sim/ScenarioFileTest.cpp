#include <gtest/gtest.h>

#include <chrono>

#include "Vantric/ModemState.h"
#include "sim/ScenarioFile.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using namespace std::chrono_literals;
using com_qel::Orvane::Vantric::fieldText;
using namespace vantric_sim;
using vantric_test::TemporaryFolder;

// What is wrong with a scenario; empty when nothing is.
std::string errorOf(const std::string& text) {
    try {
        parseScenario(text);
        return "";
    } catch (const ScenarioError& error) {
        return error.what();
    }
}

TEST(ScenarioFile, refusesNestingThatWouldExhaustTheStack) {
    const std::size_t levels = 200000;
    EXPECT_EQ(errorOf(std::string(levels, '[') + std::string(levels, ']')),
              "expected at most 100 levels of nesting");
}

TEST(ScenarioFile, showsAnUnknownKeysControlCharactersEscaped) {
    const std::string error = errorOf(R"({"\u0000a\u001b": 1})");
    EXPECT_EQ(error.rfind("\\x00a\\x1b: unknown key, expected ", 0), 0u) << error;
}

TEST(ScenarioFile, showsUnreadableTextWithItsControlCharactersEscaped) {
    const std::string error = errorOf("{\"a\x7f\n");
    EXPECT_NE(error.find("a\\x7f"), std::string::npos) << error;
    EXPECT_EQ(error.find('\x7f'), std::string::npos);
    EXPECT_EQ(error.find('\n'), std::string::npos);
}

TEST(ScenarioFile, leavesTheDefaultsWhereAScenarioSaysNothing) {
    const Scenario scenario = parseScenario("{}");
    EXPECT_EQ(int32_t(scenario.state.connectivityType), 2);
    EXPECT_EQ(fieldText(scenario.state.wifiSsid), "home");
    EXPECT_EQ(fieldText(scenario.extended.wifiEncryptionName), "WPA2 (PSK)");
    EXPECT_EQ(scenario.networks.size(), 3U);
    EXPECT_EQ(scenario.intervals.publish, 1s);
    EXPECT_EQ(scenario.configurationHostname, std::nullopt);
    EXPECT_TRUE(scenario.timeline.empty());
}

TEST(ScenarioFile, setsSingleFieldsOfTheInitialRecords) {
    const Scenario scenario = parseScenario(
        R"({"state": {"hostname": "x", "connectivityType": -7},
            "extended": {"macAddress": "m", "carrierSignalLevel": 2147483647}})");
    EXPECT_EQ(fieldText(scenario.state.hostname), "x");
    EXPECT_EQ(int32_t(scenario.state.connectivityType), -7);
    EXPECT_EQ(fieldText(scenario.state.wifiSsid), "home");
    EXPECT_EQ(fieldText(scenario.extended.macAddress), "m");
    EXPECT_EQ(int32_t(scenario.extended.carrierSignalLevel), 2147483647);
}

TEST(ScenarioFile, replacesTheNetworks) {
    const Scenario scenario =
        parseScenario(R"({"networks": [{"ssid": "a", "encryptionType": 6, "signalLevel": -9},
                                       {"ssid": "b"}]})");
    ASSERT_EQ(scenario.networks.size(), 2U);
    EXPECT_EQ(fieldText(scenario.networks[0].ssid), "a");
    EXPECT_EQ(int32_t(scenario.networks[0].encryptionType), 6);
    EXPECT_EQ(int32_t(scenario.networks[0].signalLevel), -9);
    EXPECT_EQ(int32_t(scenario.networks[1].signalLevel), 0);
}

TEST(ScenarioFile, setsEveryDelayAndInterval) {
    const Scenario scenario = parseScenario(
        R"({"delays": {"switchConnectivity": 1, "joinNetwork": 2, "setEncryption": 3,
                       "configurationStart": 4, "configurationLoad": 5, "scan": 6, "refresh": 7,
                       "connect": 0},
            "intervals": {"publish": 8, "drain": 9}})");
    EXPECT_EQ(scenario.delays.switchConnectivity, 1ms);
    EXPECT_EQ(scenario.delays.joinNetwork, 2ms);
    EXPECT_EQ(scenario.delays.setEncryption, 3ms);
    EXPECT_EQ(scenario.delays.configurationStart, 4ms);
    EXPECT_EQ(scenario.delays.configurationLoad, 5ms);
    EXPECT_EQ(scenario.delays.scan, 6ms);
    EXPECT_EQ(scenario.delays.refresh, 7ms);
    EXPECT_EQ(scenario.delays.connect, 0ms);
    EXPECT_EQ(scenario.intervals.publish, 8ms);
    EXPECT_EQ(scenario.intervals.drain, 9ms);
}

TEST(ScenarioFile, setsTheTextsThatReactionsUse) {
    const Scenario scenario =
        parseScenario(R"({"configurationHostname": "h", "connectionState": "up"})");
    EXPECT_EQ(scenario.configurationHostname, "h");
    EXPECT_EQ(scenario.connectionState, "up");
}

TEST(ScenarioFile, allowsComments) {
    EXPECT_EQ(errorOf("// one\n{ /* two */ \"networks\": [] // three\n}"), "");
}

TEST(ScenarioFile, refusesTextThatIsNoJsonAndSaysWhere) {
    const std::string error = errorOf("{\n  \"networks\": [,]\n}");
    EXPECT_EQ(error.rfind("expected JSON: parse error at line 2, column 16", 0), 0U) << error;
    EXPECT_EQ(errorOf("").rfind("expected JSON: ", 0), 0U);
}

TEST(ScenarioFile, refusesADocumentThatIsNoObject) {
    EXPECT_EQ(errorOf("[]"), "the whole document: expected an object, found []");
}

TEST(ScenarioFile, namesAnUnknownKeyAndTheKnownOnes) {
    EXPECT_EQ(errorOf(R"({"state": {"hostnam": "x"}})"),
              "state.hostnam: unknown key, expected connectivityType, wifiSsid, wifiPassword, "
              "wifiEncryptionType, hostname or wifiConnectionState");
    EXPECT_EQ(errorOf(R"({"sate": {}})"),
              "sate: unknown key, expected state, extended, networks, delays, intervals, "
              "configurationHostname, connectionState or timeline");
    EXPECT_EQ(errorOf(R"({"intervals": {"x": 1}})"),
              "intervals.x: unknown key, expected publish or drain");
}

TEST(ScenarioFile, namesTheKeyPathOfAWrongType) {
    EXPECT_EQ(errorOf(R"({"networks": [{"ssid": "a"}, {"ssid": "b"},
                                       {"ssid": "c", "signalLevel": "high"}]})"),
              "networks[2].signalLevel: expected a whole number from -2147483648 to 2147483647, "
              "found \"high\"");
    EXPECT_EQ(errorOf(R"({"state": {"hostname": 5}})"),
              "state.hostname: expected a text of at most 31 bytes, without NUL, found 5");
    EXPECT_EQ(errorOf(R"({"networks": {}})"), "networks: expected an array, found {}");
    EXPECT_EQ(errorOf(R"({"networks": [7]})"), "networks[0]: expected an object, found 7");
    EXPECT_EQ(errorOf(R"({"delays": []})"), "delays: expected an object, found []");
    EXPECT_EQ(errorOf(R"({"delays": {"scan": 1.5}})"),
              "delays.scan: expected a whole number from 0 to 3600000, found 1.5");
}

TEST(ScenarioFile, namesTheRangeOfANumberOutsideIt) {
    const std::string range = "expected a whole number from -2147483648 to 2147483647, found ";
    EXPECT_EQ(errorOf(R"({"extended": {"serverWord": 2147483648}})"),
              "extended.serverWord: " + range + "2147483648");
    EXPECT_EQ(errorOf(R"({"extended": {"serverWord": -2147483649}})"),
              "extended.serverWord: " + range + "-2147483649");
    EXPECT_EQ(errorOf(R"({"extended": {"serverWord": 18446744073709551615}})"),
              "extended.serverWord: " + range + "18446744073709551615");
    EXPECT_EQ(errorOf(R"({"delays": {"scan": -1}})"),
              "delays.scan: expected a whole number from 0 to 3600000, found -1");
    EXPECT_EQ(errorOf(R"({"intervals": {"drain": 0}})"),
              "intervals.drain: expected a whole number from 1 to 3600000, found 0");
}

TEST(ScenarioFile, acceptsATextThatFillsItsFieldAndRefusesALongerOne) {
    const auto withSsid = [](std::size_t length) {
        return R"({"state": {"wifiSsid": ")" + std::string(length, 'x') + R"("}})";
    };
    EXPECT_EQ(errorOf(withSsid(32)), "");
    EXPECT_EQ(errorOf(withSsid(33)),
              "state.wifiSsid: expected a text of at most 32 bytes, without NUL, found \"" +
                  std::string(33, 'x') + "\"");
    EXPECT_EQ(errorOf(R"({"connectionState": "12345678901234567890123456789012"})")
                  .rfind("connectionState: expected a text of at most 31 bytes", 0),
              0U);
    EXPECT_EQ(errorOf(R"({"configurationHostname": "12345678901234567890123456789012"})")
                  .rfind("configurationHostname: expected a text of at most 31 bytes", 0),
              0U);
}

TEST(ScenarioFile, countsBytesNotCharacters) {
    EXPECT_EQ(errorOf(R"({"state": {"hostname": "éééééééééééééééé"}})")
                  .rfind("state.hostname: expected a text of at most 31 bytes", 0),
              0U);
}

TEST(ScenarioFile, refusesATextWithNul) {
    EXPECT_EQ(errorOf(R"({"state": {"hostname": "a\u0000b"}})")
                  .rfind("state.hostname: expected a text of at most 31 bytes, without NUL", 0),
              0U);
}

TEST(ScenarioFile, quotesLongValuesInPart) {
    const std::string error =
        errorOf(R"({"state": {"hostname": ")" + std::string(1000, 'x') + R"("}})");
    EXPECT_LT(error.size(), 200U);
    EXPECT_EQ(error.substr(error.size() - 4), "x...");
}

TEST(ScenarioFile, demandsTheNameOfANetwork) {
    EXPECT_EQ(errorOf(R"({"networks": [{"signalLevel": 1}]})"),
              "networks[0].ssid: missing, expected the network's name");
}

TEST(ScenarioFile, acceptsAHundredNetworksAndNoMore) {
    const auto withNetworks = [](int count) {
        std::string text = R"({"networks": [{"ssid": "n"})";
        for (int index = 1; index < count; ++index) {
            text += R"(, {"ssid": "n"})";
        }
        return text + "]}";
    };
    EXPECT_EQ(errorOf(withNetworks(100)), "");
    EXPECT_EQ(errorOf(withNetworks(101)), "networks: expected at most 100 elements, found 101");
}

TEST(ScenarioFile, readsAFileOfAnySize) {
    const TemporaryFolder folder;
    const std::string file =
        folder.write("long.json", "//" + std::string(20000, 'x') + "\n{\"networks\": []}");
    EXPECT_TRUE(readScenarioFile(file).networks.empty());
}

TEST(ScenarioFile, putsTheFileInFrontOfWhatIsWrong) {
    const TemporaryFolder folder;
    const std::string file = folder.write("bad.json", "{\"x\": 1}");
    try {
        readScenarioFile(file);
        FAIL() << "accepted";
    } catch (const ScenarioError& error) {
        EXPECT_EQ(std::string(error.what()).rfind(file + ": x: unknown key", 0), 0U);
    }
}

TEST(ScenarioFile, saysWhyAFileCannotBeRead) {
    const TemporaryFolder folder;
    const std::string missing = (folder.path() / "none").string();
    for (const auto& [path, reason] :
         {std::pair<std::string, std::string>{missing, ": No such file or directory"},
          {folder.path().string(), ": Is a directory"}}) {
        try {
            readScenarioFile(path);
            FAIL() << "accepted " << path;
        } catch (const ScenarioError& error) {
            EXPECT_EQ(error.what(), path + reason);
        }
    }
}

}  // namespace
