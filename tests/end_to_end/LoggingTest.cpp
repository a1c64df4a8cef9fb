// Where the library's log records show among the program's output.
#include <gtest/gtest.h>

#include <fstream>

#include "tests/end_to_end/Bench.h"
#include "tests/end_to_end/HeldRequest.h"
#include "tests/end_to_end/LogLines.h"
#include "tests/end_to_end/LoggedRun.h"
#include "tests/end_to_end/Transcript.h"
#include "tests/support/Polling.h"
#include "tests/support/PublishedServer.h"

namespace {

using vantric_test::alwaysFresh;
using vantric_test::ChildProcess;
using vantric_test::Command;
using vantric_test::freshState;
using vantric_test::HeldRequest;
using vantric_test::lockRecord;
using vantric_test::masked;
using vantric_test::normalised;
using vantric_test::probe;
using vantric_test::PublishedServer;
using vantric_test::runCleanly;
using vantric_test::stale;
using vantric_test::staleHostnameRecord;
using vantric_test::TemporaryFolder;
using vantric_test::timingsBlock;
using SentFrames = vantric_test::Frames;

Command logging(Command command, const std::string& level) {
    command.environment["VRAX_LOG_LEVEL"] = level;
    return command;
}

std::string configTimings() {
    return timingsBlock({"setConfig: #us", "modem config change: #sec"});
}

TEST(Logging, recordsKeepTheirPlaceInTheOutput) {
    PublishedServer server;
    server.state.publish(stale(freshState()));
    ChildProcess command(logging(probe({"--setConfig", "a.cfg"}, 3), "error"));
    const std::string failure = "Failed to get current HostName\n";
    ASSERT_TRUE(vantric_test::eventually(
        [&] { return vantric_test::countOf(command.output(), failure) == 2; }));
    server.state.publish(alwaysFresh(freshState()));
    const auto status = command.wait();
    EXPECT_TRUE(status && status->code() == 0);
    EXPECT_EQ(normalised(command.output()),
              "Client successfully connected.\n" + (staleHostnameRecord + failure) +
                  staleHostnameRecord + failure +
                  "Current HostName is: modem-17\nNow changing to a.cfg\n." + configTimings());
}

TEST(Logging, recordsFollowTheDotsBeforeThem) {
    PublishedServer server;
    HeldRequest request(server, logging(probe({"--setConfig", "a.cfg"}, 3), "error"),
                        "Failed to get current HostName", freshState());
    server.state.publish(stale(freshState()));
    request.release();
    ASSERT_TRUE(request.waitForCount("\nFailed to get HostName\n", 2));
    server.state.publish(alwaysFresh(freshState()));
    EXPECT_EQ(normalised(request.transcript()),
              std::string("Current HostName is: modem-17\nNow changing to a.cfg\n") +
                  staleHostnameRecord + "\nFailed to get HostName\n." + staleHostnameRecord +
                  "\nFailed to get HostName\n.." + configTimings());
}

TEST(Logging, fileHoldsTheRecordInTwoLines) {
    PublishedServer server;
    server.state.publish(stale(freshState()));
    const TemporaryFolder folder;
    const std::string path = folder / "client.log";
    std::ofstream(path) << "left by an earlier run\n";
    Command command = logging(probe({"--setConfig", "a.cfg"}, 3), "error");
    command.environment["VRAX_LOG_TYPE"] = "text_file";
    command.environment["VRAX_LOG_ROOT"] = folder.path();
    command.environment["VRAX_LOG_NAME"] = "client.log";
    ChildProcess child(command);
    ASSERT_TRUE(child.waitForOutput("Failed to get current HostName\n"));
    EXPECT_EQ(normalised(vantric_test::bytesOf(path)), staleHostnameRecord);
    server.state.publish(alwaysFresh(freshState()));
    const auto status = child.wait();
    EXPECT_TRUE(status && status->code() == 0);
    EXPECT_EQ(vantric_test::startingAt(masked(child.output()), "Current "),
              "Current HostName is: modem-17\nNow changing to a.cfg\n." + configTimings());
    EXPECT_EQ(child.output().find("<error>"), std::string::npos);
}

TEST(Logging, everyConnectionThatFailsLeavesARecord) {
    vantric_test::refuseConnections();
    EXPECT_EQ(
        normalised(runCleanly(logging(probe({"--forgetwifi", "--statuscapi"}), "error")).output),
        vantric_test::repeated(std::string(vantric_test::connectionRecord) + "Failed to connect\n",
                               2));
}

TEST(Logging, timeoutOfForgettingIsAWarning) {
    vantric_test::Bench bench(R"({"timeline": [{"at": 0, "do": "ignoreCommand", "command": 8}]})",
                              vantric_test::minutesInSeconds);
    EXPECT_EQ(normalised(runCleanly(logging(bench.probe({"--forgetwifi"}), "warning")).output),
              std::string(vantric_test::forgetTimeoutRecord) + "Failed to forget wifi\n");
}

TEST(Logging, warningsAreNoErrors) {
    vantric_test::Bench bench(R"({"timeline": [{"at": 0, "do": "ignoreCommand", "command": 8}]})",
                              vantric_test::minutesInSeconds);
    EXPECT_EQ(runCleanly(logging(bench.probe({"--forgetwifi"}), "error")).output,
              "Failed to forget wifi\n");
}

TEST(Logging, aLockThatCannotBeOpenedIsOnlyLogged) {
    vantric_test::breakOneLock();
    PublishedServer server;
    server.state.publish(freshState());
    EXPECT_EQ(normalised(runCleanly(logging(probe({"--enablewifi"}), "error")).output),
              std::string(lockRecord) +
                  "Client successfully connected.\n"
                  "Current connectivity is: Carrier\n"
                  "Now changing to Wifi" +
                  timingsBlock({"setConnectivityType: #us"}));
    EXPECT_EQ(server.takeFrames(), SentFrames({{5, ""}}));
}

TEST(Logging, programsWithoutFailuresLogNothing) {
    vantric_test::Bench bench(R"({"delays": {"scan": 0, "refresh": 0, "setEncryption": 0}})");
    const std::vector<std::string> arguments = {"--enablewifi", "--availablewifi", "--forgetwifi",
                                                "--statuscapi"};
    const std::string output = runCleanly(logging(bench.probe(arguments), "trace")).output;
    EXPECT_EQ(output.find(">: "), std::string::npos) << output;
}

}  // namespace
