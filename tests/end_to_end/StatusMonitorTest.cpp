#include <gtest/gtest.h>

#include <chrono>
#include <csignal>

#include "tests/end_to_end/Bench.h"
#include "tests/end_to_end/Transcript.h"
#include "tests/support/Polling.h"

namespace {

using namespace std::chrono_literals;
using vantric_test::Bench;
using vantric_test::ChildProcess;
using vantric_test::commandPatience;
using vantric_test::countOf;
using vantric_test::eventually;
using vantric_test::masked;
using vantric_test::numberBehind;
using Frames = std::vector<std::string>;

constexpr const char* connected = "Client successfully connected.\n";
constexpr const char* ruler = "========================================================\n";
constexpr const char* blockEnd = "========================================================\n\n";

std::string block(const std::string& connectivity, const std::string& ssid,
                  const std::string& hostname) {
    return std::string(ruler) + "Execution time: # ms.\nConnectivity: " + connectivity +
           "\nWifi SSID: " + ssid + "\nHostName: " + hostname + "\n" + blockEnd;
}

bool waitForCycles(const ChildProcess& command, std::size_t count) {
    return eventually([&] { return countOf(command.output(), blockEnd) >= count; },
                      commandPatience);
}

// The output of the monitor, stopped after so many cycles.
std::string outputOfCycles(const Bench& bench, std::size_t count,
                           const std::vector<std::string>& arguments = {"--status"}) {
    ChildProcess command(bench.probe(arguments));
    EXPECT_TRUE(waitForCycles(command, count));
    command.sendSignal(SIGTERM);
    const auto status = command.wait();
    EXPECT_TRUE(status && status->signal() == SIGTERM);
    EXPECT_EQ(command.errors(), "");
    return command.output();
}

TEST(StatusMonitor, printsABlockInEveryCycle) {
    Bench bench(R"({"delays": {"scan": 300}})", 3);
    const std::string output = outputOfCycles(bench, 2);
    EXPECT_EQ(masked(output),
              "Client successfully connected.\n"
              "========================================================\n"
              "Execution time: # ms.\n"
              "Connectivity: Carrier\n"
              "Wifi SSID: home\n"
              "HostName: modem\n"
              "========================================================\n"
              "\n"
              "========================================================\n"
              "Execution time: # ms.\n"
              "Connectivity: Carrier\n"
              "Wifi SSID: home\n"
              "HostName: modem\n"
              "========================================================\n"
              "\n");
    EXPECT_GE(numberBehind(output, "Execution time: "), 300);
    EXPECT_LT(numberBehind(output, "Execution time: "), 10'000);
    EXPECT_EQ(bench.frames(), Frames({"10 RequestWifiList 0 \"\"", "10 RequestWifiList 0 \"\""}));
}

TEST(StatusMonitor, rests5SecondsBetweenItsCycles) {
    Bench bench(R"({"delays": {"scan": 0}})");
    ChildProcess command(bench.probe({"--status"}));
    ASSERT_TRUE(waitForCycles(command, 1));
    const auto start = std::chrono::steady_clock::now();
    ASSERT_TRUE(waitForCycles(command, 2));
    const auto elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_GE(elapsed, 4900ms);
    EXPECT_LT(elapsed, 10s);
}

TEST(StatusMonitor, goesOnWhenTheListTimesOut) {
    Bench bench(R"({"timeline": [{"at": 0, "do": "ignoreCommand", "command": 10}]})", 40);
    const std::string output = outputOfCycles(bench, 2);
    const std::string cycle =
        "Failed to get Wifi available list\n" + block("Carrier", "home", "modem");
    EXPECT_EQ(masked(output), connected + cycle + cycle);
    EXPECT_GE(numberBehind(output, "Execution time: "), 30'000);
    EXPECT_LT(numberBehind(output, "Execution time: "), 90'000);
}

TEST(StatusMonitor, showsNothingOfAStaleState) {
    Bench bench(R"({"timeline": [{"at": 0, "do": "ageTimestamps", "seconds": 1000}]})", 4);
    EXPECT_EQ(masked(outputOfCycles(bench, 2)),
              connected + vantric_test::repeated("Failed to get connectivity type\n"
                                                 "Failed to get Wifi SSID\n"
                                                 "Failed to get HostName\n" +
                                                     block("None", "", ""),
                                                 2));
}

// The first query reports the failure; the others find a record of zeros.
TEST(StatusMonitor, reportsAnInvalidStateOnce) {
    Bench bench(R"({"timeline": [{"at": 0, "do": "invalidateHeader", "segment": "state"}]})", 4);
    EXPECT_EQ(masked(outputOfCycles(bench, 2)), std::string(connected) +
                                                    "Failed to get connectivity type\n" +
                                                    block("None", "", "") + block("None", "", ""));
}

TEST(StatusMonitor, showsEachCyclesOwnState) {
    Bench bench(R"({"delays": {"scan": 0}, "state": {"connectivityType": 1},
                    "timeline": [{"at": 3.5, "do": "set", "state":
                        {"connectivityType": 2, "wifiSsid": "other", "hostname": "renamed"}}]})");
    EXPECT_EQ(masked(outputOfCycles(bench, 2)),
              connected + block("Wifi", "home", "modem") + block("Carrier", "other", "renamed"));
}

TEST(StatusMonitor, namesAConnectivityThatItDoesNotKnow) {
    for (const char* type : {"3", "-1", "2147483647"}) {
        Bench bench(std::string(R"({"delays": {"scan": 0}, "state": {"connectivityType": )") +
                    type + "}}");
        EXPECT_EQ(masked(outputOfCycles(bench, 1)),
                  connected + block("Unknown connectivity", "home", "modem"));
    }
}

TEST(StatusMonitor, writesTextsAsTheyAre) {
    Bench bench(R"({"delays": {"scan": 0},
                    "state": {"wifiSsid": "a\u0001\u001b[31m, b", "hostname": "caf\u00e9\n"}})");
    EXPECT_EQ(masked(outputOfCycles(bench, 1)),
              connected + block("Carrier", "a\x01\x1b[31m, b", "caf\xc3\xa9\n"));
}

TEST(StatusMonitor, neverReachesTheWordsBehindIt) {
    Bench bench(R"({"delays": {"scan": 0}})", 4);
    EXPECT_EQ(masked(outputOfCycles(bench, 2, {"--status", "-h", "--enablewifi"})),
              connected + block("Carrier", "home", "modem") + block("Carrier", "home", "modem"));
    EXPECT_EQ(bench.frames(), Frames({"10 RequestWifiList 0 \"\"", "10 RequestWifiList 0 \"\""}));
}

}  // namespace
