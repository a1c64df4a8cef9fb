#include <gtest/gtest.h>

#include <memory>
#include <sstream>

#include "tests/end_to_end/Bench.h"
#include "tests/end_to_end/HeldRequest.h"
#include "tests/end_to_end/Transcript.h"
#include "tests/support/PublishedServer.h"

namespace {

using vantric_test::alwaysFresh;
using vantric_test::Bench;
using vantric_test::ChildProcess;
using vantric_test::freshState;
using vantric_test::HeldRequest;
using vantric_test::masked;
using vantric_test::minutesInSeconds;
using vantric_test::numberBehind;
using vantric_test::probe;
using vantric_test::PublishedServer;
using vantric_test::stale;
using vantric_test::timingsBlock;
using vantric_test::withDotsJoined;
using Frames = std::vector<std::string>;
using SentFrames = vantric_test::Frames;

constexpr const char* connected = "Client successfully connected.\n";

std::string joinTimings() {
    return timingsBlock({"setWifiSSID: #us", "modem wifi change: #sec"});
}

// What joining the network in use prints.
std::string joiningAgain(const std::string& name) {
    return connected + ("Current wifi name is: " + name) + "\nNow changing to " + name +
           "\n.\nWifi name changed.\n" + joinTimings();
}

std::string listTimings() {
    return timingsBlock({"getWifiAvailableListBlocking: #ms"});
}

vantric_test::Vantric::ModemState stateOf(const std::string& ssid) {
    vantric_test::Vantric::ModemState state = freshState();
    vantric_test::setText(state.wifiSsid, ssid);
    return state;
}

TEST(SetWifi, waitsUntilTheServerHasJoinedTheNetwork) {
    Bench bench(R"({"delays": {"joinNetwork": 1500}})", 2);
    EXPECT_EQ(bench.transcript({"--setwifi", "office"}),
              "Client successfully connected.\n"
              "Current wifi name is: home\n"
              "Now changing to office\n"
              "..\n"
              "Wifi name changed.\n"
              "\n"
              "---------------------------------\n"
              "Timings:\n"
              "setWifiSSID: #us\n"
              "modem wifi change: #sec\n"
              "\n");
    EXPECT_EQ(bench.frames(), Frames({"7 SetWifiSsid 6 \"office\""}));
}

TEST(SetWifi, takesOneLookForTheNameInUse) {
    Bench bench;
    const std::string output = bench.run({"--setwifi", "home"}).output;
    EXPECT_EQ(masked(output), joiningAgain("home"));
    EXPECT_EQ(numberBehind(output, "modem wifi change: "), 3);
    EXPECT_EQ(bench.frames(), Frames({"7 SetWifiSsid 4 \"home\""}));
}

// The server ignores the request, so the published name stays "home".
TEST(SetWifi, neverTakesANameForAnotherOne) {
    Bench bench(R"({"timeline": [{"at": 0, "do": "ignoreCommand", "command": 7}]})",
                minutesInSeconds);
    const std::vector<std::string> names = {"Home", "hom", "homes", "home ", ""};
    std::vector<std::unique_ptr<ChildProcess>> commands;
    commands.reserve(names.size());
    for (const std::string& name : names) {
        commands.push_back(std::make_unique<ChildProcess>(bench.probe({"--setwifi", name})));
    }
    for (std::size_t index = 0; index < names.size(); ++index) {
        const auto status = commands[index]->wait(vantric_test::commandPatience);
        EXPECT_TRUE(status && status->code() == 0);
        const std::string output = commands[index]->output();
        EXPECT_EQ(withDotsJoined(masked(output)),
                  std::string(connected) + "Current wifi name is: home\nNow changing to " +
                      names[index] + "\n.\nTimeout! Modem did not change wifi name to " +
                      names[index] + " in the allocated time of: 5 minutes.\n" + joinTimings());
        EXPECT_GE(numberBehind(output, "modem wifi change: "), 300);
    }
    EXPECT_EQ(bench.frames().size(), names.size());
}

TEST(SetWifi, takesNamesAsTheyAre) {
    const std::vector<std::string> names = {"a,b, c",
                                            "two  blanks ",
                                            "quote\" back\\slash",
                                            "caf\xc3\xa9 \xe6\x97\xa5",
                                            "\x01\x1b[31m\t\n\x7f",
                                            "\xff\xfe\x80",
                                            "%s%n%d",
                                            std::string(32, 'n')};
    for (const std::string& name : names) {
        PublishedServer server;
        server.state.publish(alwaysFresh(stateOf(name)));
        EXPECT_EQ(transcript(probe({"--setwifi", name}, 20)), joiningAgain(name));
        EXPECT_EQ(server.takeFrames(), SentFrames({{7, name}}));
    }
}

TEST(SetWifi, takesAnEmptyName) {
    Bench bench(R"({"state": {"wifiSsid": ""}})", 10);
    EXPECT_EQ(bench.transcript({"--setwifi", ""}), joiningAgain(""));
    EXPECT_EQ(bench.frames(), Frames({"7 SetWifiSsid 0 \"\""}));
}

TEST(SetWifi, readsTheCurrentNameUntilThatSucceeds) {
    PublishedServer server;
    server.state.publish(stale(stateOf("home")));
    ChildProcess command(probe({"--setwifi", "home"}, 3));
    const std::string failures =
        "Failed to get current wifi name\nFailed to get current wifi name\n";
    ASSERT_TRUE(command.waitForOutput(failures));
    server.state.publish(alwaysFresh(stateOf("home")));
    const auto status = command.wait();
    EXPECT_TRUE(status && status->code() == 0);
    EXPECT_EQ(masked(command.output()), connected + failures +
                                            "Current wifi name is: home\nNow changing to home\n" +
                                            ".\nWifi name changed.\n" + joinTimings());
}

TEST(SetWifi, reportsEveryLookThatFails) {
    PublishedServer server;
    HeldRequest request(server, probe({"--setwifi", "office"}, 3),
                        "Failed to get current wifi name", stateOf("home"));
    server.state.publish(stale(stateOf("home")));
    request.release();
    ASSERT_TRUE(request.waitForCount("\nFailed to get wifi name\n", 2));
    server.state.publish(alwaysFresh(stateOf("office")));
    EXPECT_EQ(request.transcript(),
              "Current wifi name is: home\n"
              "Now changing to office\n"
              "\nFailed to get wifi name\n"
              ".\nFailed to get wifi name\n"
              "..\nWifi name changed.\n" +
                  joinTimings());
    EXPECT_EQ(server.takeFrames(), SentFrames({{7, "office"}}));
}

TEST(AvailableWifi, listsTheStrongestNetworkFirst) {
    Bench bench(R"({"networks": [
        {"ssid": "ten", "encryptionType": 0, "signalLevel": 10},
        {"ssid": "seventy", "encryptionType": 2, "signalLevel": 70},
        {"ssid": "forty", "encryptionType": 6, "signalLevel": 40},
        {"ssid": "below zero", "encryptionType": 1, "signalLevel": -85}]})");
    EXPECT_EQ(bench.transcript({"--availablewifi"}),
              "Client successfully connected.\n"
              "Available Wifi: \n"
              "\t0 - seventy, 2 (WPA2 (PSK)), 70\n"
              "\t1 - forty, 6 (WPA+WPA2 Enterprise (RADIUS)), 40\n"
              "\t2 - ten, 0 (None), 10\n"
              "\t3 - below zero, 1 (WPA(PSK)), -85\n"
              "\n"
              "---------------------------------\n"
              "Timings:\n"
              "getWifiAvailableListBlocking: #ms\n"
              "\n");
    EXPECT_EQ(bench.frames(), Frames({"10 RequestWifiList 0 \"\""}));
}

TEST(AvailableWifi, measuresTheScan) {
    Bench bench(R"({"delays": {"scan": 700}})");
    const int64_t time =
        numberBehind(bench.run({"--availablewifi"}).output, "getWifiAvailableListBlocking: ");
    EXPECT_GE(time, 700);
    EXPECT_LT(time, 5'000);
}

TEST(AvailableWifi, namesEveryEncryptionType) {
    Bench bench(R"({"delays": {"scan": 0}, "networks": [
        {"ssid": "a", "encryptionType": 0, "signalLevel": 9},
        {"ssid": "b", "encryptionType": 1, "signalLevel": 8},
        {"ssid": "c", "encryptionType": 2, "signalLevel": 7},
        {"ssid": "d", "encryptionType": 3, "signalLevel": 6},
        {"ssid": "e", "encryptionType": 4, "signalLevel": 5},
        {"ssid": "f", "encryptionType": 5, "signalLevel": 4},
        {"ssid": "g", "encryptionType": 6, "signalLevel": 3},
        {"ssid": "h", "encryptionType": 7, "signalLevel": 2},
        {"ssid": "i", "encryptionType": -1, "signalLevel": 1}]})");
    EXPECT_EQ(bench.transcript({"--availablewifi"}),
              std::string(connected) +
                  "Available Wifi: \n"
                  "\t0 - a, 0 (None), 9\n"
                  "\t1 - b, 1 (WPA(PSK)), 8\n"
                  "\t2 - c, 2 (WPA2 (PSK)), 7\n"
                  "\t3 - d, 3 (WPA+WPA2 (PSK)), 6\n"
                  "\t4 - e, 4 (WPA Enterprise (RADIUS)), 5\n"
                  "\t5 - f, 5 (WPA2 Enterprise (RADIUS)), 4\n"
                  "\t6 - g, 6 (WPA+WPA2 Enterprise (RADIUS)), 3\n"
                  "\t7 - h, 7 (Unknown encryption type), 2\n"
                  "\t8 - i, -1 (Unknown encryption type), 1\n" +
                  listTimings());
}

TEST(AvailableWifi, listsOneHundredNetworks) {
    constexpr int count = 100;
    std::ostringstream networks;
    std::ostringstream lines;
    for (int index = 0; index < count; ++index) {
        const int reversed = count - 1 - index;
        networks << (index == 0 ? "" : ",") << R"({"ssid": "network )" << index
                 << R"(", "encryptionType": 2, "signalLevel": )" << index << "}";
        lines << "\t" << index << " - network " << reversed << ", 2 (WPA2 (PSK)), " << reversed
              << "\n";
    }
    Bench bench(R"({"delays": {"scan": 0}, "networks": [)" + networks.str() + "]}");
    EXPECT_EQ(bench.transcript({"--availablewifi"}),
              std::string(connected) + "Available Wifi: \n" + lines.str() + listTimings());
}

TEST(AvailableWifi, listsEveryOneOfEquallyStrongNetworks) {
    Bench bench(R"({"delays": {"scan": 0}, "networks": [
        {"ssid": "left", "encryptionType": 0, "signalLevel": 5},
        {"ssid": "right", "encryptionType": 0, "signalLevel": 5}]})");
    const std::string output = bench.transcript({"--availablewifi"});
    EXPECT_EQ(vantric_test::countOf(output, " - left, 0 (None), 5\n"), 1U) << output;
    EXPECT_EQ(vantric_test::countOf(output, " - right, 0 (None), 5\n"), 1U) << output;
    EXPECT_EQ(vantric_test::countOf(output, "\t"), 2U) << output;
}

TEST(AvailableWifi, writesTheHeadingOnlyForAnEmptyList) {
    Bench bench(R"({"delays": {"scan": 0}, "networks": []})");
    EXPECT_EQ(bench.transcript({"--availablewifi"}),
              std::string(connected) + "Available Wifi: \n" + listTimings());
}

TEST(AvailableWifi, writesNamesAsTheyAre) {
    Bench bench(R"({"delays": {"scan": 0}, "networks": [
        {"ssid": "", "encryptionType": 0, "signalLevel": 4},
        {"ssid": "a, 2 (b), 3", "encryptionType": 0, "signalLevel": 3},
        {"ssid": "\u0001\u001b[31m\t", "encryptionType": 0, "signalLevel": 2},
        {"ssid": "caf\u00e9", "encryptionType": 0, "signalLevel": 1}]})");
    EXPECT_EQ(bench.transcript({"--availablewifi"}), std::string(connected) +
                                                         "Available Wifi: \n"
                                                         "\t0 - , 0 (None), 4\n"
                                                         "\t1 - a, 2 (b), 3, 0 (None), 3\n"
                                                         "\t2 - \x01\x1b[31m\t, 0 (None), 2\n"
                                                         "\t3 - caf\xc3\xa9, 0 (None), 1\n" +
                                                         listTimings());
}

TEST(AvailableWifi, failsAfter30Seconds) {
    Bench bench(R"({"timeline": [{"at": 0, "do": "ignoreCommand", "command": 10}]})", 20);
    const std::string output = bench.run({"--availablewifi"}).output;
    EXPECT_EQ(masked(output), std::string(connected) +
                                  "Failed to get the list of available wifi networks.\n" +
                                  listTimings());
    EXPECT_GE(numberBehind(output, "getWifiAvailableListBlocking: "), 30'000);
    EXPECT_LT(numberBehind(output, "getWifiAvailableListBlocking: "), 60'000);
    EXPECT_EQ(bench.frames(), Frames({"10 RequestWifiList 0 \"\""}));
}

// A list that cannot be read is no reason to ask for another one.
TEST(AvailableWifi, failsAtOnceWhenTheListCannotBeRead) {
    Bench bench(
        R"({"timeline": [{"at": 0, "do": "changeVersion", "segment": "networks", "version": 2}]})");
    const std::string output = bench.run({"--availablewifi"}).output;
    EXPECT_EQ(masked(output), std::string(connected) +
                                  "Failed to get the list of available wifi networks.\n" +
                                  listTimings());
    EXPECT_LT(numberBehind(output, "getWifiAvailableListBlocking: "), 5'000);
    EXPECT_EQ(bench.frames(), Frames());
}

}  // namespace
