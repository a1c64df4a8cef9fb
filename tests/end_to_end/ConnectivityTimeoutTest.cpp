// Switches that take more than five minutes, on a faster clock.
#include <gtest/gtest.h>

#include <csignal>

#include "tests/end_to_end/Bench.h"
#include "tests/end_to_end/HeldRequest.h"
#include "tests/end_to_end/Transcript.h"
#include "tests/support/Polling.h"
#include "tests/support/PublishedServer.h"

namespace {

using vantric_test::Bench;
using vantric_test::ChildProcess;
using vantric_test::commandPatience;
using vantric_test::countDots;
using vantric_test::countOf;
using vantric_test::eventually;
using vantric_test::freshState;
using vantric_test::HeldRequest;
using vantric_test::masked;
using vantric_test::minutesInSeconds;
using vantric_test::numberBehind;
using vantric_test::probe;
using vantric_test::PublishedServer;
using vantric_test::repeated;
using vantric_test::stale;
using vantric_test::timingsBlock;
using vantric_test::withDotsJoined;
using Frames = std::vector<std::string>;

constexpr const char* stuckSwitch = R"({"timeline": [{"at": 0, "do": "stickSwitch"}]})";
constexpr const char* sent = "Command sent, waiting for change to be effective (max 5 minutes).\n";
constexpr const char* readFailure = "Failed to get connectivity type";
constexpr const char* changed = "\nConnectivity changed.\n";

std::string switchTimings() {
    return timingsBlock({"setConnectivityType: #us", "modem connectivity change: #sec"});
}

std::string timeoutLine(const std::string& target) {
    return "\nTimeout! Modem did not switch to " + target +
           " in the allocated time of: 5 minutes.\n";
}

vantric_test::Vantric::ModemState stateOf(int32_t connectivityType) {
    vantric_test::Vantric::ModemState state = freshState();
    state.connectivityType = connectivityType;
    return state;
}

TEST(ConnectivityTimeout, comesAfterFiveMinutesOfAStuckSwitch) {
    constexpr int precise = 20;
    Bench bench(stuckSwitch, precise);
    const std::string output = bench.run({"--switchtowifi"}).output;
    const std::size_t dots = countDots(output);
    EXPECT_EQ(masked(output),
              "Client successfully connected.\n"
              "Current connectivity is: Carrier\n"
              "Now changing to WifiCommand sent, waiting for change to be effective (max 5 "
              "minutes).\n" +
                  std::string(dots, '.') +
                  "\nTimeout! Modem did not switch to Wifi in the allocated time of: 5 minutes.\n"
                  "\n"
                  "---------------------------------\n"
                  "Timings:\n"
                  "setConnectivityType: #us\n"
                  "modem connectivity change: #sec\n"
                  "\n");
    // One look every 3 seconds, each a little late; none more than five minutes have room for.
    EXPECT_LE(dots, 100U);
    EXPECT_GE(dots, 70U);
    EXPECT_GE(numberBehind(output, "modem connectivity change: "), 300);
    EXPECT_LE(numberBehind(output, "modem connectivity change: "), 330);
    EXPECT_EQ(bench.frames(), Frames({"5 SwitchToWifi 0 \"\""}));
}

TEST(ConnectivityTimeout, namesTheCarrier) {
    Bench bench(R"({"state": {"connectivityType": 1},
                    "timeline": [{"at": 0, "do": "stickSwitch"}]})",
                minutesInSeconds);
    EXPECT_EQ(withDotsJoined(bench.transcript({"--switchtocarrier"})),
              withDotsJoined(std::string("Client successfully connected.\n"
                                         "Current connectivity is: Wifi\n"
                                         "Now changing to Carrier") +
                             sent + "." + timeoutLine("Carrier") + switchTimings()));
    EXPECT_EQ(bench.frames(), Frames({"6 SwitchToCarrier 0 \"\""}));
}

// The command sleeps through the change and through the limit: the look that sees the change comes
// too late and still counts as one.
TEST(ConnectivityTimeout, doesNotHideAChangeThatWasSeenTooLate) {
    Bench bench(R"({"delays": {"switchConnectivity": 400000}})", minutesInSeconds);
    ChildProcess command(bench.probe({"--switchtowifi"}));
    ASSERT_TRUE(bench.simulator().waitForOutput("frame 5 "));
    command.sendSignal(SIGSTOP);
    vantric_test::Vantric::ClientServer::SharedMemoryModemState state;
    ASSERT_TRUE(eventually(
        [&] {
            vantric_test::Vantric::ModemState record;
            return state.read(record) && record.connectivityType == 1;
        },
        commandPatience));
    command.sendSignal(SIGCONT);
    const auto status = command.wait(commandPatience);
    EXPECT_TRUE(status && status->code() == 0);
    const std::string output = masked(command.output());
    EXPECT_EQ(withDotsJoined(output),
              withDotsJoined(std::string("Client successfully connected.\n"
                                         "Current connectivity is: Carrier\n"
                                         "Now changing to Wifi") +
                             sent + "." + timeoutLine("Wifi") + changed + switchTimings()));
}

// Every look fails, so what was read before the request is what is compared at the end.
TEST(ConnectivityTimeout, isFollowedByTheChangeThatTheFirstReadFound) {
    PublishedServer server;
    HeldRequest request(server, probe({"--switchtowifi"}, minutesInSeconds), readFailure,
                        stateOf(1));
    server.state.publish(stale(stateOf(1)));
    request.release();
    const std::string output = request.transcript();
    const std::size_t looks = countOf(output, readFailure);
    EXPECT_GE(looks, 30U);
    EXPECT_LE(looks, 101U);
    // The last look fails as well, and then time is up.
    EXPECT_EQ(output, std::string("Current connectivity is: Wifi\nNow changing to Wifi") + sent +
                          repeated(std::string("\n") + readFailure + "\n.", looks - 1) + "\n" +
                          readFailure + "\n" + timeoutLine("Wifi") + changed + switchTimings());
}

// Seen from outside, the dots of several looks come at once, with the next line end.
TEST(ConnectivityTimeout, doesNotShowDotsBeforeTheNextLineEnd) {
    PublishedServer server;
    server.state.publish(vantric_test::alwaysFresh(stateOf(2)));
    ChildProcess command(probe({"--switchtowifi"}, minutesInSeconds));
    ASSERT_TRUE(command.waitForOutput(sent));
    bool hasShownDots = false;
    EXPECT_TRUE(eventually(
        [&] {
            const std::string output = command.output();
            hasShownDots = hasShownDots || output.back() == '.';
            return output.find("Timeout!") != std::string::npos;
        },
        commandPatience));
    EXPECT_FALSE(hasShownDots);
    EXPECT_GE(countDots(command.output()), 30U);
}

// A segment without a valid record fails one look; after that it reads as a record of zeros.
TEST(ConnectivityTimeout, reportsAnInvalidStateOnce) {
    PublishedServer server;
    HeldRequest request(server, probe({"--switchtowifi"}, minutesInSeconds), readFailure,
                        stateOf(2));
    vantric_test::invalidate(server.state);
    request.release();
    EXPECT_EQ(
        withDotsJoined(request.transcript()),
        withDotsJoined(std::string("Current connectivity is: Carrier\nNow changing to Wifi") +
                       sent + "\n" + readFailure + "\n." + timeoutLine("Wifi") + switchTimings()));
}

}  // namespace
