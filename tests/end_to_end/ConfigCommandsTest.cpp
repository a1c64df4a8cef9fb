#include <gtest/gtest.h>

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
using vantric_test::setText;
using vantric_test::stale;
using vantric_test::timingsBlock;
using Frames = std::vector<std::string>;
using SentFrames = vantric_test::Frames;

constexpr const char* connected = "Client successfully connected.\n";
constexpr const char* firstFailure = "Failed to get current HostName";
constexpr const char* lookFailure = "\nFailed to get HostName\n";

// A server that keeps publishing its state while it loads a configuration.
constexpr const char* everReadable = R"({
    "state": {"wifiSsid": "home, sweet home", "wifiPassword": "a,b", "wifiEncryptionType": 3},
    "timeline": [{"at": 0, "do": "ignoreCommand", "command": 9},
                 {"at": 0, "do": "ignoreCommand", "command": 7},
                 {"at": 0, "do": "ignoreCommand", "command": 8}]})";

std::string configTimings() {
    return timingsBlock({"setConfig: #us", "modem config change: #sec"});
}

TEST(SetConfig, waitsForOneReadableState) {
    Bench bench(everReadable);
    const std::string output = bench.run({"--setConfig", "/etc/modem/backup 1.cfg"}).output;
    EXPECT_EQ(masked(output),
              "Client successfully connected.\n"
              "Current HostName is: modem\n"
              "Now changing to /etc/modem/backup 1.cfg\n"
              ".\n"
              "---------------------------------\n"
              "Timings:\n"
              "setConfig: #us\n"
              "modem config change: #sec\n"
              "\n");
    EXPECT_EQ(numberBehind(output, "modem config change: "), 3);
    EXPECT_EQ(bench.frames(), Frames({"9 SetConfig 23 \"/etc/modem/backup 1.cfg\""}));
}

TEST(SetConfig, reportsEveryLookAtAnUnreadableState) {
    PublishedServer server;
    HeldRequest request(server, probe({"--setConfig", "a.cfg"}, 3), firstFailure, freshState());
    server.state.publish(stale(freshState()));
    request.release();
    ASSERT_TRUE(request.waitForCount(lookFailure, 3));
    // Whatever the host name is then, even none, the wait is over.
    vantric_test::Vantric::ModemState loaded = freshState();
    setText(loaded.hostname, "");
    server.state.publish(alwaysFresh(loaded));
    EXPECT_EQ(request.transcript(),
              std::string("Current HostName is: modem-17\nNow changing to a.cfg\n") + lookFailure +
                  "." + lookFailure + "." + lookFailure + ".." + configTimings());
    EXPECT_EQ(server.takeFrames(), SentFrames({{9, "a.cfg"}}));
}

// The second read of an invalid state counts as one, so the wait is over then.
TEST(SetConfig, reportsAnInvalidStateOnce) {
    PublishedServer server;
    HeldRequest request(server, probe({"--setConfig", "a.cfg"}, 10), firstFailure, freshState());
    vantric_test::invalidate(server.state);
    request.release();
    EXPECT_EQ(request.transcript(),
              std::string("Current HostName is: modem-17\nNow changing to a.cfg\n") + lookFailure +
                  ".." + configTimings());
}

// The first look finds the state from before: nothing tells it from the one that is awaited.
TEST(SetConfig, isOverBeforeASlowServerStartsToLoad) {
    Bench bench(R"({"delays": {"configurationStart": 1500, "configurationLoad": 60000}})", 4);
    EXPECT_EQ(bench.transcript({"--setConfig", "new.cfg"}),
              std::string(connected) + "Current HostName is: modem\nNow changing to new.cfg\n." +
                  configTimings());
    EXPECT_EQ(bench.frames(), Frames({"9 SetConfig 7 \"new.cfg\""}));
}

TEST(SetConfig, readsTheHostNameUntilThatSucceeds) {
    PublishedServer server;
    server.state.publish(stale(freshState()));
    ChildProcess command(probe({"--setConfig", "a.cfg"}, 3));
    const std::string failures = std::string(firstFailure) + "\n" + firstFailure + "\n";
    ASSERT_TRUE(command.waitForOutput(failures));
    server.state.publish(alwaysFresh(freshState()));
    const auto status = command.wait();
    EXPECT_TRUE(status && status->code() == 0);
    EXPECT_EQ(masked(command.output()),
              connected + failures + "Current HostName is: modem-17\nNow changing to a.cfg\n." +
                  configTimings());
}

TEST(SetConfig, timesOutAfterFiveMinutes) {
    PublishedServer server;
    HeldRequest request(server, probe({"--setConfig", "a.cfg"}, minutesInSeconds), firstFailure,
                        freshState());
    server.state.publish(stale(freshState()));
    request.release();
    const std::string output = request.transcript();
    const std::size_t looks = vantric_test::countOf(output, lookFailure);
    EXPECT_GE(looks, 30U);
    EXPECT_LE(looks, 101U);
    EXPECT_EQ(output,
              "Current HostName is: modem-17\nNow changing to a.cfg\n" +
                  vantric_test::repeated(std::string(lookFailure) + ".", looks - 1) + lookFailure +
                  "\nTimeout! Modem did not change config name to a.cfg in the allocated time of: "
                  "5 minutes.\n" +
                  configTimings());
    EXPECT_GE(numberBehind(request.command().output(), "modem config change: "), 300);
}

TEST(SetConfigKeepWifi, writesTheWifiSettingsBack) {
    Bench bench(everReadable);
    const std::string output = bench.run({"--setConfigKeepWifi", "new.cfg"}).output;
    EXPECT_EQ(masked(output),
              "Client successfully connected.\n"
              "Current config name is: modem\n"
              "Now changing to new.cfg\n"
              ".\n"
              "---------------------------------\n"
              "Timings:\n"
              "setConfig: #us\n"
              "modem config change: #sec\n"
              "\n");
    EXPECT_EQ(numberBehind(output, "modem config change: "), 3);
    EXPECT_EQ(bench.frames(),
              Frames({"9 SetConfig 7 \"new.cfg\"", "7 SetWifiSsid 16 \"home, sweet home\"",
                      "8 SetWifiPasswordAndEncryptionType 5 \"3,a,b\""}));
}

// The settings are those from before, whatever the new configuration brings.
TEST(SetConfigKeepWifi, writesBackWhatItReadBefore) {
    PublishedServer server;
    HeldRequest request(server, probe({"--setConfigKeepWifi", "a.cfg"}, 10), firstFailure,
                        freshState());
    vantric_test::Vantric::ModemState loaded = freshState();
    setText(loaded.wifiSsid, "factory");
    setText(loaded.wifiPassword, "factory password");
    loaded.wifiEncryptionType = 0;
    server.state.publish(alwaysFresh(loaded));
    request.release();
    EXPECT_EQ(request.transcript(),
              "Current config name is: modem-17\nNow changing to a.cfg\n." + configTimings());
    EXPECT_EQ(server.takeFrames(),
              SentFrames({{9, "a.cfg"}, {7, "home network"}, {8, "3,secret"}}));
}

TEST(SetConfigKeepWifi, writesTheSettingsBackAfterATimeoutAsWell) {
    PublishedServer server;
    HeldRequest request(server, probe({"--setConfigKeepWifi", "a.cfg"}, minutesInSeconds),
                        firstFailure, freshState());
    server.state.publish(stale(freshState()));
    request.release();
    const std::string output = request.transcript();
    EXPECT_NE(output.find("\nTimeout! Modem did not change config name to a.cfg in the allocated "
                          "time of: 5 minutes.\n" +
                          configTimings()),
              std::string::npos)
        << output;
    EXPECT_EQ(server.takeFrames(),
              SentFrames({{9, "a.cfg"}, {7, "home network"}, {8, "3,secret"}}));
}

}  // namespace
