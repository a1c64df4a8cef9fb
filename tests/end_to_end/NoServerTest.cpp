// Every command while no server has ever run: the client creates the objects itself and connects;
// the first query of each segment fails, the ones behind it find zeros.
#include <gtest/gtest.h>

#include <csignal>

#include "tests/end_to_end/Bench.h"
#include "tests/end_to_end/Transcript.h"
#include "tests/support/Polling.h"
#include "tests/support/PublishedServer.h"

namespace {

using vantric_test::attachCount;
using vantric_test::minutesInSeconds;
using vantric_test::numberBehind;
using vantric_test::probe;
using vantric_test::PublishedServer;
using vantric_test::timingsBlock;
using vantric_test::transcript;
using vantric_test::withDotsJoined;
using SentFrames = vantric_test::Frames;

constexpr const char* connected = "Client successfully connected.\n";

// What waits for a server in the ring.
SentFrames waitingFrames() {
    return PublishedServer().takeFrames();
}

TEST(WithoutServer, aSwitchIsRequestedAllTheSame) {
    EXPECT_EQ(transcript(probe({"--enablewifi", "--disablewifi"}, 10)),
              "Client successfully connected.\n"
              "Failed to get connectivity type\n"
              "Current connectivity is: None\n"
              "Now changing to Wifi" +
                  timingsBlock({"setConnectivityType: #us"}) +
                  "Client successfully connected.\n"
                  "Failed to get connectivity type\n"
                  "Current connectivity is: None\n"
                  "Now changing to Carrier" +
                  timingsBlock({"setConnectivityType: #us"}));
    EXPECT_EQ(waitingFrames(), SentFrames({{5, ""}, {6, ""}}));
}

TEST(WithoutServer, aSwitchThatWaitsTimesOut) {
    EXPECT_EQ(withDotsJoined(transcript(probe({"--switchtocarrier"}, minutesInSeconds))),
              withDotsJoined(
                  "Client successfully connected.\n"
                  "Failed to get connectivity type\n"
                  "Current connectivity is: None\n"
                  "Now changing to CarrierCommand sent, waiting for change to be effective (max 5 "
                  "minutes).\n"
                  ".\nTimeout! Modem did not switch to Carrier in the allocated time of: 5 "
                  "minutes.\n" +
                  timingsBlock({"setConnectivityType: #us", "modem connectivity change: #sec"})));
    EXPECT_EQ(waitingFrames(), SentFrames({{6, ""}}));
}

TEST(WithoutServer, joiningANetworkTimesOut) {
    EXPECT_EQ(withDotsJoined(transcript(probe({"--setwifi", "home"}, minutesInSeconds))),
              "Client successfully connected.\n"
              "Failed to get current wifi name\n"
              "Current wifi name is: \n"
              "Now changing to home\n"
              ".\nTimeout! Modem did not change wifi name to home in the allocated time of: 5 "
              "minutes.\n" +
                  timingsBlock({"setWifiSSID: #us", "modem wifi change: #sec"}));
    EXPECT_EQ(waitingFrames(), SentFrames({{7, "home"}}));
}

TEST(WithoutServer, theEmptyNameCountsAsJoined) {
    EXPECT_EQ(transcript(probe({"--setwifi", ""}, 10)),
              "Client successfully connected.\n"
              "Failed to get current wifi name\n"
              "Current wifi name is: \n"
              "Now changing to \n"
              ".\nWifi name changed.\n" +
                  timingsBlock({"setWifiSSID: #us", "modem wifi change: #sec"}));
    EXPECT_EQ(waitingFrames(), SentFrames({{7, ""}}));
}

TEST(WithoutServer, noScanIsRequested) {
    EXPECT_EQ(transcript(probe({"--availablewifi"})),
              "Client successfully connected.\n"
              "Failed to get the list of available wifi networks.\n" +
                  timingsBlock({"getWifiAvailableListBlocking: #ms"}));
    EXPECT_EQ(waitingFrames(), SentFrames());
}

TEST(WithoutServer, aConfigurationCountsAsLoaded) {
    EXPECT_EQ(transcript(probe({"--setConfig", "a.cfg"}, 10)),
              "Client successfully connected.\n"
              "Failed to get current HostName\n"
              "Current HostName is: \n"
              "Now changing to a.cfg\n"
              "." +
                  timingsBlock({"setConfig: #us", "modem config change: #sec"}));
    EXPECT_EQ(waitingFrames(), SentFrames({{9, "a.cfg"}}));
}

TEST(WithoutServer, emptyWifiSettingsAreWrittenBack) {
    EXPECT_EQ(transcript(probe({"--setConfigKeepWifi", "a.cfg"}, 10)),
              "Client successfully connected.\n"
              "Failed to get current HostName\n"
              "Current config name is: \n"
              "Now changing to a.cfg\n"
              "." +
                  timingsBlock({"setConfig: #us", "modem config change: #sec"}));
    EXPECT_EQ(waitingFrames(), SentFrames({{9, "a.cfg"}, {7, ""}, {8, "0,"}}));
}

// The first read fails and is repeated at once; the second one finds nothing configured.
TEST(WithoutServer, theNetworkCountsAsForgotten) {
    const std::string output = vantric_test::runCleanly(probe({"--forgetwifi"})).output;
    EXPECT_EQ(vantric_test::masked(output), "Successfully forgot the wifi settings after #ms.\n");
    EXPECT_LT(numberBehind(output, "after "), 2'000);
    EXPECT_EQ(waitingFrames(), SentFrames({{8, "0,0"}}));
}

TEST(WithoutServer, noStatusIsRequested) {
    EXPECT_EQ(transcript(probe({"--statuscapi"})), "Failed to get status from C API wifi\n");
    EXPECT_EQ(waitingFrames(), SentFrames());
}

// Commands disconnect at their end, which leaves everything attached.
TEST(WithoutServer, everyCommandStaysAttached) {
    transcript(probe({"--availablewifi", "--forgetwifi", "--statuscapi"}));
    for (const char* name :
         {"ModemStateShm", "ModemStateEx", "ModemWifiList", "ModemCommandsShm"}) {
        EXPECT_EQ(attachCount(name), 3U) << name;
    }
    EXPECT_EQ(vantric_test::attachedProducers(), 3U);
}

TEST(WithoutServer, theMonitorShowsZeros) {
    constexpr const char* ruler = "========================================================\n";
    const std::string block =
        std::string(ruler) +
        "Execution time: # ms.\nConnectivity: None\nWifi SSID: \nHostName: \n" + ruler + "\n";
    vantric_test::ChildProcess command(probe({"--status"}, 20));
    const std::string listFailure = "Failed to get Wifi available list\n";
    ASSERT_TRUE(vantric_test::eventually(
        [&] { return vantric_test::countOf(command.output(), "HostName: \n") == 2; }));
    command.sendSignal(SIGTERM);
    const auto status = command.wait();
    EXPECT_TRUE(status && status->signal() == SIGTERM);
    EXPECT_EQ(vantric_test::masked(command.output()),
              std::string(connected) + "Failed to get connectivity type\n" + listFailure + block +
                  listFailure + block);
    // The second scan was requested, for the list then counted as readable, and timed out.
    EXPECT_GE(numberBehind(command.output().substr(command.output().rfind("Execution")),
                           "Execution time: "),
              30'000);
    EXPECT_EQ(waitingFrames(), SentFrames({{10, ""}}));
}

}  // namespace
