// Commands that cannot connect: the objects cannot be opened or mapped.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <chrono>
#include <filesystem>

#include "tests/end_to_end/Bench.h"
#include "tests/end_to_end/HeldRequest.h"
#include "tests/end_to_end/Transcript.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/TinySharedMemory.h"

namespace {

using namespace std::chrono_literals;
using vantric_test::ChildProcess;
using vantric_test::Command;
using vantric_test::probe;
using vantric_test::PublishedServer;
using vantric_test::runCleanly;
using vantric_test::timingsBlock;

constexpr const char* retryLine = "Client failed to connect, retrying in 1 second.\n";

constexpr const char* helpHeading = "Vantric test client.\n";

// What the scan says on objects that nobody publishes in.
std::string connectedWithoutServer() {
    return "Client successfully connected.\n"
           "Failed to get the list of available wifi networks.\n" +
           timingsBlock({"getWifiAvailableListBlocking: #ms"});
}

// Keeps the object of that name from being opened.
class Obstacle {
  public:
    explicit Obstacle(const std::string& objectName) : path_("/dev/shm/" + objectName) {
        std::filesystem::create_directory(path_);
    }
    void remove() { std::filesystem::remove(path_); }

  private:
    std::filesystem::path path_;
};

void connectsOnceTheObstacleIsGone(const std::string& objectName) {
    Obstacle obstacle(objectName);
    ChildProcess command(probe({"--availablewifi"}));
    ASSERT_TRUE(command.waitForOutput(retryLine));
    obstacle.remove();
    const auto status = command.wait();
    EXPECT_TRUE(status && status->code() == 0);
    EXPECT_EQ(vantric_test::masked(command.output()), retryLine + connectedWithoutServer());
    EXPECT_EQ(command.errors(), "");
}

TEST(Connection, isRetriedUntilTheFirstObjectCanBeOpened) {
    connectsOnceTheObstacleIsGone("ModemStateShm");
}

TEST(Connection, isRetriedUntilTheLastObjectCanBeOpened) {
    connectsOnceTheObstacleIsGone("ModemCommandsShm");
}

TEST(Connection, isRetriedOnceASecond) {
    const Obstacle obstacle("ModemWifiList");
    ChildProcess command(probe({"--enablewifi"}));
    ASSERT_TRUE(command.waitForOutput(retryLine));
    const auto start = std::chrono::steady_clock::now();
    ASSERT_TRUE(command.waitForOutput(std::string(retryLine) + retryLine + retryLine));
    const auto elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_GE(elapsed, 1900ms);
    EXPECT_LT(elapsed, 5s);
}

TEST(Connection, failureEndsOnlyItsCommand) {
    const Obstacle obstacle("ModemCommandsShm");
    const std::string output =
        runCleanly(probe({"--statuscapi", "--forgetwifi", "--statuscapi", "-h"})).output;
    EXPECT_EQ(output.substr(0, output.find(helpHeading)),
              "Failed to connect\nFailed to connect\nFailed to connect\n");
    EXPECT_NE(output.find(helpHeading), std::string::npos);
}

// What a handle that could not connect holds is never released.
TEST(Connection, failureOfTheCInterfaceReleasesNothing) {
    const Obstacle obstacle("ModemCommandsShm");
    runCleanly(probe({"--statuscapi"}));
    EXPECT_EQ(vantric_test::attachCount("ModemStateShm"), 1U);
    EXPECT_EQ(vantric_test::attachCount("ModemStateEx"), 1U);
    EXPECT_EQ(vantric_test::attachCount("ModemWifiList"), 1U);
}

TEST(Connection, failsInsteadOfCrashingWhenTheSharedMemoryIsFull) {
    // Room for the states; the list or the ring is what does not fit any more.
    const vantric_test::TinySharedMemory tiny("40k");
    Command command = probe({"--statuscapi"});
    command.environment["VRAX_LOG_LEVEL"] = "error";
    const std::string output = runCleanly(command).output;
    EXPECT_NE(output.find("Failed to connect to shared memory, error: Failed to map to shared "
                          "memory, error: No space left on device\nFailed to connect\n"),
              std::string::npos)
        << output;
}

// Under the sanitizers a refused allocation ends the process by design.
#ifndef __SANITIZE_ADDRESS__

TEST(Connection, exceptionsEndTheCommandAndNotTheProgram) {
    PublishedServer server;
    server.state.publish(vantric_test::stale(vantric_test::freshState()));
    // The longest argument that the system passes on: its copies need memory of their own.
    const std::string longName(131'071, 'n');
    ChildProcess command(probe({"--setwifi", longName, "-h"}, 2));
    ASSERT_TRUE(command.waitForOutput("Failed to get current wifi name\n"));
    const rlimit nothingMore = {1, 1};
    ASSERT_EQ(prlimit(command.pid(), RLIMIT_AS, &nothingMore, nullptr), 0);
    server.state.publish(vantric_test::alwaysFresh(vantric_test::freshState()));

    const auto status = command.wait();
    EXPECT_TRUE(status && status->code() == 0);
    EXPECT_EQ(command.errors(), "");
    const std::string output = vantric_test::startingAt(command.output(), "Current wifi name is: ");
    const std::string expected = "Current wifi name is: home network\nNow changing to " + longName +
                                 "\n[Client] Exception: std::bad_alloc\n" + helpHeading;
    EXPECT_EQ(output.substr(0, expected.size()), expected);
    // The client is gone, not merely disconnected: only the server is attached.
    EXPECT_EQ(vantric_test::attachCount("ModemStateShm"), 1U);
    EXPECT_EQ(vantric_test::attachedProducers(), 0U);
}

#endif

}  // namespace
