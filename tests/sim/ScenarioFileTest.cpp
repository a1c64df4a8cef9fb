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

// What is wrong with what `read` takes; empty when nothing is.
std::string errorOf(const std::string& input,
                    Scenario (*read)(const std::string& input) = parseScenario) {
    try {
        read(input);
        return "";
    } catch (const ScenarioError& error) {
        return error.what();
    }
}

void expectError(const std::string& scenario, const std::string& expected) {
    EXPECT_EQ(errorOf(scenario), expected) << scenario;
}

void expectErrorOfEvent(const std::string& event, const std::string& expected) {
    expectError(R"({"timeline": [{"at": 1, "do": "restore"}, )" + event + "]}",
                "timeline[1]" + expected);
}

TEST(ScenarioFile, setsEveryFieldOfTheInitialRecordsAndOnlyTheOnesItNames) {
    const Scenario scenario = parseScenario(
        R"({"state": {"connectivityType": -7, "wifiSsid": "s", "wifiPassword": "p",
                      "wifiEncryptionType": 8, "hostname": "h", "wifiConnectionState": "c"},
            "extended": {"serverWord": 2147483647, "carrierSignalLevel": 1, "wifiSsid": "t",
                         "wifiEncryptionType": 2, "wifiEncryptionName": "e", "wifiSignalLevel": 3,
                         "ipv4Address": "4", "macAddress": "m", "updateCounter": 5}})");
    const ModemState& state = scenario.state;
    EXPECT_EQ(int32_t(state.connectivityType), -7);
    EXPECT_EQ(fieldText(state.wifiSsid), "s");
    EXPECT_EQ(fieldText(state.wifiPassword), "p");
    EXPECT_EQ(int32_t(state.wifiEncryptionType), 8);
    EXPECT_EQ(fieldText(state.hostname), "h");
    EXPECT_EQ(fieldText(state.wifiConnectionState), "c");
    const ModemStateExtended& extended = scenario.extended;
    EXPECT_EQ(int32_t(extended.serverWord), 2147483647);
    EXPECT_EQ(int32_t(extended.carrierSignalLevel), 1);
    EXPECT_EQ(fieldText(extended.wifiSsid), "t");
    EXPECT_EQ(int32_t(extended.wifiEncryptionType), 2);
    EXPECT_EQ(fieldText(extended.wifiEncryptionName), "e");
    EXPECT_EQ(int32_t(extended.wifiSignalLevel), 3);
    EXPECT_EQ(fieldText(extended.ipv4Address), "4");
    EXPECT_EQ(fieldText(extended.macAddress), "m");
    EXPECT_EQ(int32_t(extended.updateCounter), 5);

    const ModemState single = parseScenario(R"({"state": {"hostname": "h"}})").state;
    EXPECT_EQ(fieldText(single.hostname), "h");
    EXPECT_EQ(fieldText(single.wifiSsid), "home");
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
    const Delays& delays = scenario.delays;
    const milliseconds read[] = {delays.connect,
                                 delays.switchConnectivity,
                                 delays.joinNetwork,
                                 delays.setEncryption,
                                 delays.configurationStart,
                                 delays.configurationLoad,
                                 delays.scan,
                                 delays.refresh,
                                 scenario.intervals.publish,
                                 scenario.intervals.drain};
    for (int index = 0; index < 10; ++index) {
        EXPECT_EQ(read[index], milliseconds(index));
    }
}

TEST(ScenarioFile, setsTheTextsThatReactionsUse) {
    const Scenario scenario =
        parseScenario(R"({"configurationHostname": "h", "connectionState": "up"})");
    EXPECT_EQ(scenario.configurationHostname, "h");
    EXPECT_EQ(scenario.connectionState, "up");
}

TEST(ScenarioFile, putsEventsInOrderOfTimeAndKeepsTheFilesOrderForEqualTimes) {
    const auto timeline = parseScenario(R"({"timeline": [
        {"at": 2.5, "do": "restore"}, {"at": 0, "do": "exit"}, {"at": 2.5, "do": "freeze"}]})")
                              .timeline;
    ASSERT_EQ(timeline.size(), 3U);
    EXPECT_STREQ(timeline[0].name, "exit");
    EXPECT_STREQ(timeline[1].name, "restore");
    EXPECT_EQ(timeline[1].at, 2500ms);
    EXPECT_STREQ(timeline[2].name, "freeze");
}

TEST(ScenarioFile, allowsComments) {
    expectError("// one\n{ /* two */ \"networks\": [] // three\n}", "");
}

TEST(ScenarioFile, refusesTextThatIsNoJsonAndSaysWhere) {
    const std::string error = errorOf("{\n  \"networks\": [,]\n}");
    EXPECT_EQ(error.rfind("expected JSON: parse error at line 2, column 16", 0), 0U) << error;
    EXPECT_EQ(errorOf("").rfind("expected JSON: ", 0), 0U);
}

TEST(ScenarioFile, refusesNestingThatWouldExhaustTheStack) {
    const std::size_t levels = 200000;
    EXPECT_EQ(errorOf(std::string(levels, '[') + std::string(levels, ']')),
              "expected at most 100 levels of nesting");
}

TEST(ScenarioFile, namesAnUnknownKeyAndTheKnownOnes) {
    expectError(R"({"sate": {}})",
                "sate: unknown key, expected state, extended, networks, delays, intervals, "
                "configurationHostname, connectionState or timeline");
    expectError(R"({"state": {"hostnam": "x"}})",
                "state.hostnam: unknown key, expected connectivityType, wifiSsid, wifiPassword, "
                "wifiEncryptionType, hostname or wifiConnectionState");
    expectError(R"({"intervals": {"x": 1}})",
                "intervals.x: unknown key, expected publish or drain");
    expectErrorOfEvent(R"({"at": 1, "do": "exit", "segment": "state"})",
                       ".segment: unknown key, expected at or do");
    expectErrorOfEvent(
        R"({"at": 1, "do": "replaceNetworks", "networks": [{"sid": 1}]})",
        ".networks[0].sid: unknown key, expected ssid, encryptionType or signalLevel");
}

TEST(ScenarioFile, namesTheKeyPathAndWhatWasExpectedThere) {
    const std::string word = "expected a whole number from -2147483648 to 2147483647, found ";
    const std::string text = "expected a text of at most 31 bytes, without NUL, found ";
    const std::string time = "expected a number from 0.0 to 1000000.0, found ";
    const std::string delay = "expected a whole number from 0 to 3600000, found ";
    expectError("[]", "the whole document: expected an object, found []");
    expectError(R"({"networks": [{"ssid": "a"}, {"ssid": "b", "signalLevel": "high"}]})",
                "networks[1].signalLevel: " + word + "\"high\"");
    expectError(R"({"state": {"hostname": 5}})", "state.hostname: " + text + "5");
    expectError(R"({"connectionState": 5})", "connectionState: " + text + "5");
    expectError(R"({"configurationHostname": 5})", "configurationHostname: " + text + "5");
    expectError(R"({"networks": {}})", "networks: expected an array, found {}");
    expectError(R"({"networks": [7]})", "networks[0]: expected an object, found 7");
    expectError(R"({"delays": []})", "delays: expected an object, found []");
    expectError(R"({"delays": {"scan": 1.5}})", "delays.scan: " + delay + "1.5");
    expectError(R"({"delays": {"scan": -1}})", "delays.scan: " + delay + "-1");
    expectError(R"({"intervals": {"drain": 0}})",
                "intervals.drain: expected a whole number from 1 to 3600000, found 0");
    for (const char* number : {"2147483648", "-2147483649", "18446744073709551615"}) {
        expectError(R"({"extended": {"serverWord": )" + std::string(number) + "}}",
                    "extended.serverWord: " + word + number);
    }
    expectErrorOfEvent("5", ": expected an object, found 5");
    expectErrorOfEvent(R"({"at": -1, "do": "exit"})", ".at: " + time + "-1");
    expectErrorOfEvent(R"({"at": "soon", "do": "exit"})", ".at: " + time + "\"soon\"");
    expectErrorOfEvent(R"({"at": 1, "do": "vanish", "seconds": 1e7})",
                       ".seconds: " + time + "10000000.0");
    expectErrorOfEvent(R"({"at": 1, "do": "set", "state": {"connectivityType": true}})",
                       ".state.connectivityType: " + word + "true");
    expectErrorOfEvent(R"({"at": 1, "do": "ageTimestamps", "seconds": 2147483648})",
                       ".seconds: expected a whole number from -2147483647 to 2147483647, "
                       "found 2147483648");
    expectErrorOfEvent(R"({"at": 1, "do": "ignoreCommand", "command": 10, "frames": 0})",
                       ".frames: expected a whole number from 1 to 4294967295, found 0");
    expectErrorOfEvent(R"({"at": 1, "do": "freeze", "segment": "commands"})",
                       ".segment: expected state, extended or networks, found \"commands\"");
    expectErrorOfEvent(R"({"at": 1, "do": "dieHoldingLock", "segment": 5})",
                       ".segment: expected state, extended, networks or commands, found 5");
    expectErrorOfEvent(R"({"at": 1, "do": "explode"})",
                       ".do: expected set, replaceNetworks, ignoreCommand, stickSwitch, "
                       "ageTimestamps, freeze, invalidateHeader, changeVersion, restore, "
                       "stopDraining, resumeDraining, dieHoldingLock, vanish or exit, found "
                       "\"explode\"");
}

TEST(ScenarioFile, namesAMissingKeyAndWhatWasExpectedThere) {
    expectError(R"({"networks": [{"signalLevel": 1}]})",
                "networks[0].ssid: missing, expected the network's name");
    expectErrorOfEvent(R"({"at": 1})", ".do: missing, expected the name of an event");
    expectErrorOfEvent(R"({"do": "exit"})", ".at: missing, expected a number of seconds");
    const std::pair<const char*, const char*> needed[] = {
        {"invalidateHeader", ".segment: missing, expected the segment's name"},
        {"changeVersion", ".segment: missing, expected the segment's name"},
        {"dieHoldingLock", ".segment: missing, expected the segment's name"},
        {"ignoreCommand", ".command: missing, expected a command's number"},
        {"ageTimestamps", ".seconds: missing, expected an age in seconds"},
        {"vanish", ".seconds: missing, expected a number of seconds"},
        {"replaceNetworks", ".networks: missing, expected an array of networks"}};
    for (const auto& [event, expected] : needed) {
        expectErrorOfEvent(R"({"at": 1, "do": ")" + std::string(event) + "\"}", expected);
    }
}

TEST(ScenarioFile, acceptsATextThatFillsItsFieldAndRefusesALongerOne) {
    const auto withSsid = [](std::size_t length) {
        return R"({"state": {"wifiSsid": ")" + std::string(length, 'x') + R"("}})";
    };
    expectError(withSsid(32), "");
    expectError(withSsid(33),
                "state.wifiSsid: expected a text of at most 32 bytes, without NUL, found \"" +
                    std::string(33, 'x') + "\"");
}

TEST(ScenarioFile, countsTheBytesOfATextAndRefusesANul) {
    for (const char* text : {"éééééééééééééééé", "a\\u0000b"}) {
        const std::string error =
            errorOf(R"({"state": {"hostname": ")" + std::string(text) + "\"}}");
        EXPECT_EQ(error.rfind("state.hostname: expected a text of at most 31 bytes", 0), 0U)
            << text;
    }
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

TEST(ScenarioFile, quotesLongValuesInPart) {
    const std::string error =
        errorOf(R"({"state": {"hostname": ")" + std::string(1000, 'x') + R"("}})");
    EXPECT_LT(error.size(), 200U);
    EXPECT_EQ(error.substr(error.size() - 4), "x...");
}

TEST(ScenarioFile, showsControlCharactersEscaped) {
    const std::string unknownKey = errorOf(R"({"\u0000a\u001b": 1})");
    EXPECT_EQ(unknownKey.rfind("\\x00a\\x1b: unknown key, expected ", 0), 0U) << unknownKey;
    const std::string unreadable = errorOf("{\"a\x7f\n");
    EXPECT_NE(unreadable.find("a\\x7f"), std::string::npos) << unreadable;
    EXPECT_EQ(unreadable.find_first_of("\x7f\n"), std::string::npos);
}

TEST(ScenarioFile, readsAFileOfAnySize) {
    const TemporaryFolder folder;
    const std::string file =
        folder.write("long.json", "//" + std::string(20000, 'x') + "\n{\"networks\": []}");
    EXPECT_TRUE(readScenarioFile(file).networks.empty());
}

TEST(ScenarioFile, putsTheFileBeforeWhatIsWrong) {
    const TemporaryFolder folder;
    const std::string bad = folder.write("bad.json", "{\"x\": 1}");
    EXPECT_EQ(errorOf(bad, readScenarioFile).rfind(bad + ": x: unknown key", 0), 0U);
    const std::string missing = folder.path() / "none";
    EXPECT_EQ(errorOf(missing, readScenarioFile), missing + ": No such file or directory");
    EXPECT_EQ(errorOf(folder.path(), readScenarioFile),
              folder.path().string() + ": Is a directory");
}

}  // namespace
