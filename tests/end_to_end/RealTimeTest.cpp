// How long the commands wait and what they measure, on the real clock. (What they print, on which
// occasion, is in the transcripts.)
#include <gtest/gtest.h>

#include <chrono>

#include "tests/end_to_end/Bench.h"
#include "tests/end_to_end/HeldRequest.h"
#include "tests/end_to_end/Transcript.h"
#include "tests/support/Polling.h"
#include "tests/support/PublishedServer.h"

namespace {

using namespace std::chrono_literals;
using vantric_test::Bench;
using vantric_test::ChildProcess;
using vantric_test::numberBehind;
using vantric_test::PublishedServer;
using Clock = std::chrono::steady_clock;

// The real time from the first `text` in the output of a command to the second.
Clock::duration timeBetween(const ChildProcess& command, const std::string& text) {
    const auto waitForCount = [&](std::size_t count) {
        EXPECT_TRUE(vantric_test::eventually(
            [&] { return vantric_test::countOf(command.output(), text) >= count; },
            vantric_test::commandPatience));
        return Clock::now();
    };
    const Clock::time_point first = waitForCount(1);
    return waitForCount(2) - first;
}

void expectMeasured(const std::string& option, const std::string& label,
                    const std::string& scenario, int64_t leastMilliseconds) {
    Bench bench(scenario);
    const int64_t measured = numberBehind(bench.run({option}).output, label);
    EXPECT_GE(measured, leastMilliseconds);
    EXPECT_LT(measured, 5'000);
}

// The change comes between the second look, after 3 seconds, and the third, after 6.
TEST(RealTime, aSwitchLooksEvery3Seconds) {
    Bench bench(R"({"delays": {"switchConnectivity": 4500}})");
    const std::string output = bench.run({"--switchtowifi"}).output;
    EXPECT_EQ(vantric_test::countDots(output), 3U);
    EXPECT_EQ(numberBehind(output, "modem connectivity change: "), 9);
    EXPECT_LT(numberBehind(output, "setConnectivityType: "), 1'000'000);
}

TEST(RealTime, aFirstReadIsRepeatedAfter3Seconds) {
    PublishedServer server;
    server.state.publish(vantric_test::stale(vantric_test::freshState()));
    const ChildProcess command(vantric_test::probe({"--enablewifi"}));
    const auto elapsed = timeBetween(command, "Failed to get connectivity type\n");
    EXPECT_GE(elapsed, 2900ms);
    EXPECT_LT(elapsed, 8s);
}

TEST(RealTime, theMonitorRests5SecondsBetweenItsCycles) {
    Bench bench(R"({"delays": {"scan": 0}})");
    const ChildProcess command(bench.probe({"--status"}));
    const auto elapsed = timeBetween(command, "HostName: modem\n");
    EXPECT_GE(elapsed, 4900ms);
    EXPECT_LT(elapsed, 10s);
}

TEST(RealTime, theScanIsMeasured) {
    expectMeasured("--availablewifi",
                   "getWifiAvailableListBlocking: ", R"({"delays": {"scan": 700}})", 700);
}

TEST(RealTime, theQueriesOfTheMonitorAreMeasured) {
    Bench bench(R"({"delays": {"scan": 300}})");
    ChildProcess command(bench.probe({"--status"}));
    ASSERT_TRUE(command.waitForOutput("HostName: modem\n"));
    EXPECT_GE(numberBehind(command.output(), "Execution time: "), 300);
    EXPECT_LT(numberBehind(command.output(), "Execution time: "), 5'000);
}

TEST(RealTime, forgettingIsMeasured) {
    expectMeasured("--forgetwifi", "Successfully forgot the wifi settings after ",
                   R"({"delays": {"setEncryption": 700}})", 700);
}

TEST(RealTime, theRefreshIsMeasured) {
    expectMeasured("--statuscapi", "Status execution time: ", R"({"delays": {"refresh": 600}})",
                   600);
}

}  // namespace
