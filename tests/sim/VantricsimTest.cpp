// The program as its users run it.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "Vantric/ClientServer/SharedMemoryModemState.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Polling.h"
#include "tests/support/RawSemaphore.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using namespace vantric_test;
using com_qel::Orvane::Vantric::ModemState;
using namespace com_qel::Orvane::Vantric::ClientServer;

Command vantricsim(const std::vector<std::string>& arguments) {
    return {VANTRICSIM_PATH, arguments};
}

const char* const objects[] = {"ModemStateShm", "ModemStateEx", "ModemWifiList",
                               "ModemCommandsShm"};

int countObjects() {
    int count = 0;
    for (const char* object : objects) {
        count += std::filesystem::exists(std::string("/dev/shm/") + object) ? 1 : 0;
    }
    return count;
}

void expectUsageFailure(const std::vector<std::string>& arguments, const std::string& message) {
    const Result result = run(vantricsim(arguments));
    EXPECT_EQ(result.status.code(), 2) << message;
    EXPECT_EQ(result.output, "") << message;
    EXPECT_NE(result.errors.find(message), std::string::npos) << result.errors;
    EXPECT_EQ(countObjects(), 0) << message;
}

// Leaves an empty /dev/shm, this process's private one: killed servers leave their objects there.
class Vantricsim : public testing::Test {
  protected:
    Command playing(const std::string& scenario) const {
        return vantricsim({"--scenario", folder_.write("scenario.json", scenario)});
    }

    void TearDown() override {
        for (const auto& entry : std::filesystem::directory_iterator("/dev/shm")) {
            std::filesystem::remove(entry.path());
        }
    }

    const TemporaryFolder folder_;
};

TEST_F(Vantricsim, saysReadyWhenEverythingIsPublished) {
    ChildProcess server(vantricsim({}));
    ASSERT_TRUE(server.waitForOutput("ready\n"));
    EXPECT_EQ(server.output(), "ready\n");
    EXPECT_EQ(countObjects(), 4);
    SharedMemoryModemState segment;
    ModemState state;
    EXPECT_TRUE(segment.read(state));
}

TEST_F(Vantricsim, detachesAndEndsWithSuccessOnSignals) {
    for (const int signal : {SIGINT, SIGTERM}) {
        ChildProcess server(vantricsim({}));
        ASSERT_TRUE(server.waitForOutput("ready\n"));
        server.sendSignal(signal);
        const auto status = server.wait();
        ASSERT_TRUE(status);
        EXPECT_EQ(status->code(), 0) << signal;
        EXPECT_EQ(countObjects(), 0) << signal;
        EXPECT_EQ(server.errors(), "");
    }
}

TEST_F(Vantricsim, printsAFrameAtOnceWithItsTime) {
    ChildProcess server(vantricsim({}));
    ASSERT_TRUE(server.waitForOutput("ready\n"));
    SharedMemoryModemCommands client(false);
    client.enqueue(7, "home", 4);
    ASSERT_TRUE(server.waitForOutput("\"home\"\n"));
    const std::string line = server.output().substr(std::string("ready\n").size());
    std::string shape = line.substr(0, 23);
    for (char& character : shape) {
        character = character >= '0' && character <= '9' ? '#' : character;
    }
    EXPECT_EQ(shape, "####-##-## ##:##:##.###");
    EXPECT_EQ(line.substr(23), " frame 7 SetWifiSsid 4 \"home\"\n");
}

TEST_F(Vantricsim, endsAfterItsDuration) {
    const Result result = run(vantricsim({"--duration", "0.2"}));
    EXPECT_EQ(result.status.code(), 0);
    EXPECT_EQ(result.output, "ready\n");
    EXPECT_EQ(countObjects(), 0);
}

TEST_F(Vantricsim, endsWithTheScenariosExit) {
    const Result result = run(playing(R"({"timeline": [{"at": 0.05, "do": "exit"}]})"));
    EXPECT_EQ(result.status.code(), 0);
    EXPECT_EQ(countObjects(), 0);
}

TEST_F(Vantricsim, diesHoldingTheLockThatTheScenarioNames) {
    const std::pair<const char*, const char*> locks[] = {{"state", "ModemStateShmLock"},
                                                         {"extended", "ModemStateExLock"},
                                                         {"networks", "ModemWifiListLock"},
                                                         {"commands", "ModemCommandsShmLock"}};
    for (const auto& [segment, held] : locks) {
        const Result result =
            run(playing(R"({"timeline": [{"at": 0, "do": "dieHoldingLock", "segment": ")" +
                        std::string(segment) + R"("}]})"));
        EXPECT_EQ(result.status.signal(), SIGKILL) << segment;
        EXPECT_EQ(result.output.rfind("ready\n", 0), 0U) << segment;
        for (const auto& [otherSegment, lock] : locks) {
            EXPECT_EQ(semaphoreValue(lock), lock == held ? 0 : 1) << lock << " after " << segment;
        }
        EXPECT_EQ(countObjects(), 4) << segment;
    }
}

TEST_F(Vantricsim, diesHoldingALockEvenWhileVanished) {
    const Result result = run(playing(R"({"timeline": [{"at": 0, "do": "vanish", "seconds": 100},
                         {"at": 0, "do": "dieHoldingLock", "segment": "networks"}]})"));
    EXPECT_EQ(result.status.signal(), SIGKILL);
    EXPECT_EQ(semaphoreValue("ModemWifiListLock"), 0);
}

TEST_F(Vantricsim, vanishesAndComesBack) {
    ChildProcess server(playing(R"({"timeline": [{"at": 0.05, "do": "vanish", "seconds": 0.5}]})"));
    ASSERT_TRUE(server.waitForOutput("event vanish\n"));
    EXPECT_TRUE(eventually([] { return countObjects() == 0; }));
    ASSERT_TRUE(server.waitForOutput("returned\n"));
    EXPECT_EQ(countObjects(), 4);
}

TEST_F(Vantricsim, servesOnWhenItsOutputHasNoReaderAnyMore) {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    close(ends[0]);
    Command command = vantricsim({});
    command.standardOutput = ends[1];
    ChildProcess server(command);
    close(ends[1]);
    SharedMemoryModemState segment;
    ModemState state;
    ASSERT_TRUE(eventually([&] { return segment.read(state); }));
    segment.accessor().memory()->valid = 0;
    EXPECT_TRUE(eventually([&] { return segment.read(state); }));
    EXPECT_FALSE(server.wait(0ms));
}

TEST_F(Vantricsim, refusesBadOptionsWithStatusTwo) {
    expectUsageFailure({"--nonsense"}, "vantricsim: The following argument was not expected");
    expectUsageFailure({"extra"}, "vantricsim: The following argument was not expected");
    expectUsageFailure({"--scenario"}, "--scenario");
    for (const char* duration : {"0", "-1", "nan", "inf", "1e10"}) {
        expectUsageFailure({"--duration", duration}, "--duration: expected seconds above 0");
    }
    expectUsageFailure({"--duration", "long"}, "--duration");
}

TEST_F(Vantricsim, refusesBadFilesWithStatusTwo) {
    expectUsageFailure({"--scenario", "/nonexistent/file"},
                       "vantricsim: /nonexistent/file: No such file or directory\n");
    expectUsageFailure({"--scenario", ""}, "No such file or directory\n");
    const std::string bad = folder_.write("bad.json", R"({"delays": {"scan": "long"}})");
    expectUsageFailure({"--scenario", bad},
                       "vantricsim: " + bad + ": delays.scan: expected a whole number");
    expectUsageFailure({"--check", "--scenario", bad}, "delays.scan");
}

TEST_F(Vantricsim, checksAScenarioWithoutRunningIt) {
    const std::string good = folder_.write("good.json", "{}");
    const Result result = run(vantricsim({"--check", "--scenario", good}));
    EXPECT_EQ(result.status.code(), 0);
    EXPECT_EQ(result.output + result.errors, "");
    EXPECT_EQ(countObjects(), 0);
}

TEST_F(Vantricsim, explainsItselfOnRequest) {
    const Result help = run(vantricsim({"--help"}));
    EXPECT_EQ(help.status.code(), 0);
    for (const char* text : {"--scenario FILE", "--duration SECONDS", "--check", "--version"}) {
        EXPECT_NE(help.output.find(text), std::string::npos) << text;
    }
    const Result version = run(vantricsim({"--version"}));
    EXPECT_EQ(version.output.rfind("vantricsim ", 0), 0U);
    const Result commands = run(vantricsim({"--list-commands"}));
    EXPECT_NE(commands.output.find("15  SetWifiConnectionRadius"), std::string::npos);
}

TEST_F(Vantricsim, endsWithStatusOneWhenTheSharedMemoryCannotBeUsed) {
    std::filesystem::create_directory("/dev/shm/ModemStateShm");
    const Result result = run(vantricsim({}));
    EXPECT_EQ(result.status.code(), 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors.rfind("vantricsim: Failed to open shared mem file, error: ", 0), 0U);
}

}  // namespace
