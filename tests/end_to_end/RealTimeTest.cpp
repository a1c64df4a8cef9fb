// How long the commands wait and what they measure, on the real clock. (What they print, on which
// occasion, is in the transcripts.)
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <regex>

#include "tests/end_to_end/Bench.h"
#include "tests/support/Polling.h"
#include "tests/support/PublishedServer.h"

namespace {

using namespace std::chrono_literals;
using namespace vantric_test;
using Clock = std::chrono::steady_clock;

// The number that follows `label` the first time; a test failure and -1 when there is none.
int64_t numberAfter(const std::string& output, const std::string& label) {
    std::smatch match;
    const bool isFound = std::regex_search(output, match, std::regex(label + "([0-9]+)"));
    EXPECT_TRUE(isFound) << '"' << label << "\" and a number are missing in:\n" << output;
    return isFound ? std::stoll(match[1]) : -1;
}

// The real time from the first `text` in the output of a command to the second.
Clock::duration timeBetween(const ChildProcess& command, const std::string& text) {
    const auto waitForPrint = [&](int number) {
        EXPECT_TRUE(eventually(
            [&] {
                const std::string output = command.output();
                const std::size_t first = output.find(text);
                return first != std::string::npos &&
                       (number == 1 || output.find(text, first + 1) != std::string::npos);
            },
            commandPatience));
        return Clock::now();
    };
    const Clock::time_point first = waitForPrint(1);
    return waitForPrint(2) - first;
}

// Expects at least `least` and less than `most` between the command's first two prints of `text`.
void expectRepeated(const std::string& option, const std::string& text, Clock::duration least,
                    Clock::duration most) {
    const ChildProcess command(probe({option}));
    const auto elapsed = timeBetween(command, text);
    EXPECT_GE(elapsed, least);
    EXPECT_LT(elapsed, most);
}

void expectMeasured(const std::string& option, const std::string& label,
                    const std::string& scenario, int64_t leastMilliseconds) {
    const Bench bench(scenario);
    const int64_t measured = numberAfter(runCleanly(probe({option})).output, label);
    EXPECT_GE(measured, leastMilliseconds);
    EXPECT_LT(measured, 5'000);
}

TEST(RealTime, aConnectionIsRetriedAfterASecond) {
    std::filesystem::create_directory("/dev/shm/ModemWifiList");
    expectRepeated("--enablewifi", "Client failed to connect, retrying in 1 second.\n", 950ms, 5s);
}

// The change comes between the second poll, after 3 seconds, and the third, after 6.
TEST(RealTime, aSwitchPollsEvery3Seconds) {
    const Bench bench(R"({"delays": {"switchConnectivity": 4500}})");
    const std::string output = runCleanly(probe({"--switchtowifi"})).output;
    EXPECT_TRUE(std::regex_search(output, std::regex("[^.][.]{3}[^.]"))) << output;
    EXPECT_EQ(numberAfter(output, "modem connectivity change: "), 9);
    EXPECT_LT(numberAfter(output, "setConnectivityType: "), 1'000'000);
}

TEST(RealTime, aFirstReadIsRepeatedAfter3Seconds) {
    PublishedServer server;
    auto state = freshState();
    state.timestamp = secondsNow() - 1'000;
    server.state.publish(state);
    expectRepeated("--enablewifi", "Failed to get connectivity type\n", 2900ms, 8s);
}

TEST(RealTime, theMonitorRests5SecondsBetweenItsCycles) {
    const Bench bench(R"({"delays": {"scan": 0}})");
    expectRepeated("--status", "HostName: modem\n", 4900ms, 10s);
}

TEST(RealTime, theScanIsMeasured) {
    expectMeasured("--availablewifi",
                   "getWifiAvailableListBlocking: ", R"({"delays": {"scan": 700}})", 700);
}

TEST(RealTime, theQueriesOfTheMonitorAreMeasured) {
    const Bench bench(R"({"delays": {"scan": 300}})");
    ChildProcess command(probe({"--status"}));
    ASSERT_TRUE(command.waitForOutput("HostName: modem\n"));
    EXPECT_GE(numberAfter(command.output(), "Execution time: "), 300);
    EXPECT_LT(numberAfter(command.output(), "Execution time: "), 5'000);
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
