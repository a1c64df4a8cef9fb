#include <gtest/gtest.h>

#include "tests/end_to_end/Bench.h"
#include "tests/end_to_end/HeldRequest.h"
#include "tests/end_to_end/Transcript.h"
#include "tests/support/PublishedServer.h"

namespace {

using vantric_test::alwaysFresh;
using vantric_test::Bench;
using vantric_test::ChildProcess;
using vantric_test::countOf;
using vantric_test::freshState;
using vantric_test::HeldRequest;
using vantric_test::masked;
using vantric_test::numberBehind;
using vantric_test::probe;
using vantric_test::PublishedServer;
using vantric_test::repeated;
using vantric_test::stale;
using vantric_test::timingsBlock;
using vantric_test::withDotsJoined;
using Frames = std::vector<std::string>;
using SentFrames = vantric_test::Frames;

constexpr const char* connected = "Client successfully connected.\n";
constexpr const char* sent = "Command sent, waiting for change to be effective (max 5 minutes).\n";
constexpr const char* readFailure = "Failed to get connectivity type";

std::string switchTimings() {
    return timingsBlock({"setConnectivityType: #us", "modem connectivity change: #sec"});
}

vantric_test::Vantric::ModemState stateOf(int32_t connectivityType) {
    vantric_test::Vantric::ModemState state = freshState();
    state.connectivityType = connectivityType;
    return state;
}

TEST(ConnectivitySwitch, enablesWifiWithoutWaiting) {
    Bench bench;
    EXPECT_EQ(bench.transcript({"--enablewifi"}),
              "Client successfully connected.\n"
              "Current connectivity is: Carrier\n"
              "Now changing to Wifi\n"
              "---------------------------------\n"
              "Timings:\n"
              "setConnectivityType: #us\n"
              "\n");
    EXPECT_EQ(bench.frames(), Frames({"5 SwitchToWifi 0 \"\""}));
}

TEST(ConnectivitySwitch, disablesWifiByASwitchToTheCarrier) {
    Bench bench(R"({"state": {"connectivityType": 1}})");
    EXPECT_EQ(bench.transcript({"--disablewifi"}),
              "Client successfully connected.\n"
              "Current connectivity is: Wifi\n"
              "Now changing to Carrier\n"
              "---------------------------------\n"
              "Timings:\n"
              "setConnectivityType: #us\n"
              "\n");
    EXPECT_EQ(bench.frames(), Frames({"6 SwitchToCarrier 0 \"\""}));
}

// The change comes between the second look, after 3 seconds, and the third, after 6.
TEST(ConnectivitySwitch, waitsUntilTheThirdLookSeesWifi) {
    Bench bench(R"({"delays": {"switchConnectivity": 4500}})");
    const std::string output = bench.run({"--switchtowifi"}).output;
    EXPECT_EQ(masked(output),
              "Client successfully connected.\n"
              "Current connectivity is: Carrier\n"
              "Now changing to WifiCommand sent, waiting for change to be effective (max 5 "
              "minutes).\n"
              "...\n"
              "Connectivity changed.\n"
              "\n"
              "---------------------------------\n"
              "Timings:\n"
              "setConnectivityType: #us\n"
              "modem connectivity change: #sec\n"
              "\n");
    EXPECT_EQ(numberBehind(output, "modem connectivity change: "), 9);
    EXPECT_LT(numberBehind(output, "setConnectivityType: "), 1'000'000);
    EXPECT_EQ(bench.frames(), Frames({"5 SwitchToWifi 0 \"\""}));
}

TEST(ConnectivitySwitch, waitsForTheCarrier) {
    Bench bench(R"({"state": {"connectivityType": 1}, "delays": {"switchConnectivity": 1500}})", 2);
    EXPECT_EQ(bench.transcript({"--switchtocarrier"}),
              std::string(connected) + "Current connectivity is: Wifi\nNow changing to Carrier" +
                  sent + "..\nConnectivity changed.\n" + switchTimings());
    EXPECT_EQ(bench.frames(), Frames({"6 SwitchToCarrier 0 \"\""}));
}

TEST(ConnectivitySwitch, sendsTheRequestForTheActiveConnectivityAsWell) {
    Bench bench(R"({"state": {"connectivityType": 1}})");
    const std::string output = bench.run({"--switchtowifi"}).output;
    EXPECT_EQ(masked(output), std::string(connected) +
                                  "Current connectivity is: Wifi\nNow changing to Wifi" + sent +
                                  ".\nConnectivity changed.\n" + switchTimings());
    EXPECT_EQ(numberBehind(output, "modem connectivity change: "), 3);
    EXPECT_EQ(bench.frames(), Frames({"5 SwitchToWifi 0 \"\""}));
}

TEST(ConnectivitySwitch, showsAConnectivityThatItDoesNotKnow) {
    Bench bench(R"({"state": {"connectivityType": 3}})");
    EXPECT_EQ(bench.transcript({"--enablewifi"}),
              std::string(connected) +
                  "Current connectivity is: Unknown connectivity\nNow changing to Wifi" +
                  timingsBlock({"setConnectivityType: #us"}));
}

TEST(ConnectivitySwitch, showsThatThereIsNoConnectivity) {
    Bench bench(R"({"state": {"connectivityType": 0}})");
    EXPECT_EQ(bench.transcript({"--disablewifi"}),
              std::string(connected) + "Current connectivity is: None\nNow changing to Carrier" +
                  timingsBlock({"setConnectivityType: #us"}));
}

TEST(ConnectivitySwitch, readsTheCurrentConnectivityUntilThatSucceeds) {
    PublishedServer server;
    server.state.publish(stale(stateOf(2)));
    ChildProcess command(probe({"--enablewifi"}, 3));
    const std::string failures =
        std::string(readFailure) + "\n" + readFailure + "\n" + readFailure + "\n";
    ASSERT_TRUE(command.waitForOutput(failures));
    server.state.publish(alwaysFresh(stateOf(2)));
    const auto status = command.wait();
    EXPECT_TRUE(status && status->code() == 0);
    EXPECT_EQ(masked(command.output()),
              connected + failures + "Current connectivity is: Carrier\nNow changing to Wifi" +
                  timingsBlock({"setConnectivityType: #us"}));
    EXPECT_EQ(server.takeFrames(), SentFrames({{5, ""}}));
}

// Nothing is sent before the current connectivity is known.
TEST(ConnectivitySwitch, waits3SecondsBetweenItsFirstReads) {
    PublishedServer server;
    server.state.publish(stale(stateOf(2)));
    ChildProcess command(probe({"--enablewifi"}));
    const std::string failure = std::string(readFailure) + "\n";
    ASSERT_TRUE(command.waitForOutput(failure));
    const auto start = std::chrono::steady_clock::now();
    ASSERT_TRUE(command.waitForOutput(failure + failure));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(2900));
    EXPECT_EQ(server.takeFrames(), SentFrames());
}

TEST(ConnectivitySwitch, reportsEveryLookThatFailsBehindItsDots) {
    PublishedServer server;
    HeldRequest request(server, probe({"--switchtowifi"}, 3), readFailure, stateOf(2));
    server.state.publish(stale(stateOf(2)));
    request.release();
    const std::string lookFailure = std::string("\n") + readFailure + "\n";
    ASSERT_TRUE(request.waitForCount(lookFailure, 3));
    server.state.publish(alwaysFresh(stateOf(1)));
    EXPECT_EQ(request.transcript(),
              std::string("Current connectivity is: Carrier\nNow changing to Wifi") + sent +
                  lookFailure + "." + lookFailure + "." + lookFailure +
                  "..\nConnectivity changed.\n" + switchTimings());
    EXPECT_EQ(server.takeFrames(), SentFrames({{5, ""}}));
}

// The state is stale for 7 seconds, in which two or three looks happen.
TEST(ConnectivitySwitch, goesOnWaitingWhenTheServerRecovers) {
    Bench bench(R"({
        "delays": {"switchConnectivity": 9000},
        "timeline": [{"at": 6, "do": "ageTimestamps", "seconds": 1000},
                     {"at": 13, "do": "ageTimestamps", "seconds": 0}]})",
                2);
    const std::string output = withDotsJoined(bench.transcript({"--switchtowifi"}));
    const std::string lookFailure = std::string("\n") + readFailure + "\n.";
    const std::size_t failures = countOf(output, lookFailure);
    EXPECT_EQ(output, withDotsJoined(std::string(connected) +
                                     "Current connectivity is: Carrier\nNow changing to Wifi" +
                                     sent + "." + repeated(lookFailure, failures) +
                                     "\nConnectivity changed.\n" + switchTimings()));
    EXPECT_GE(failures, 2U);
    EXPECT_LE(failures, 3U);
}

}  // namespace
