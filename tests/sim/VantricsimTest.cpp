// The program as its users run it.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <semaphore.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "Vantric/ClientServer/SharedMemoryModemState.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Polling.h"

namespace {

using namespace vantric_test;
using com_qel::Orvane::Vantric::ModemState;
using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands;
using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemState;

Command vantricsim(const std::vector<std::string>& arguments) {
    Command command;
    command.program = VANTRICSIM_PATH;
    command.arguments = arguments;
    return command;
}

class ScenarioOnDisk {
  public:
    explicit ScenarioOnDisk(const std::string& content) {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "vantricsimTestXXXXXX").string();
        const int descriptor = mkstemp(pattern.data());
        close(descriptor);
        path_ = pattern;
        std::ofstream(path_) << content;
    }
    ~ScenarioOnDisk() { std::filesystem::remove(path_); }
    ScenarioOnDisk(const ScenarioOnDisk&) = delete;
    ScenarioOnDisk& operator=(const ScenarioOnDisk&) = delete;

    const std::string& path() const { return path_; }

  private:
    std::string path_;
};

const char* const objects[] = {"ModemStateShm", "ModemStateEx", "ModemWifiList",
                               "ModemCommandsShm"};

int countObjects() {
    int count = 0;
    for (const char* object : objects) {
        count += std::filesystem::exists(std::string("/dev/shm/") + object) ? 1 : 0;
    }
    return count;
}

// -1 when there is none.
int valueOf(const char* semaphoreName) {
    sem_t* semaphore = sem_open(semaphoreName, 0);
    if (semaphore == SEM_FAILED) {
        return -1;
    }
    int value = -1;
    sem_getvalue(semaphore, &value);
    sem_close(semaphore);
    return value;
}

void expectUsageFailure(const std::vector<std::string>& arguments, const std::string& message) {
    const Result result = run(vantricsim(arguments));
    ASSERT_TRUE(result.status);
    EXPECT_EQ(result.status->code(), 2) << message;
    EXPECT_EQ(result.output, "") << message;
    EXPECT_NE(result.errors.find(message), std::string::npos) << result.errors;
    EXPECT_EQ(countObjects(), 0) << message;
}

// Leaves an empty /dev/shm, this process's private one: killed servers leave their objects behind.
class Vantricsim : public testing::Test {
  protected:
    void TearDown() override {
        for (const auto& entry : std::filesystem::directory_iterator("/dev/shm")) {
            std::filesystem::remove(entry.path());
        }
    }
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

TEST_F(Vantricsim, leavesTheObjectsToAttachedClientsOnSignals) {
    ChildProcess server(vantricsim({}));
    ASSERT_TRUE(server.waitForOutput("ready\n"));
    SharedMemoryModemState segment;
    server.sendSignal(SIGTERM);
    ASSERT_TRUE(server.wait());
    EXPECT_EQ(countObjects(), 1);
}

TEST_F(Vantricsim, refreshesTheStateAllTheTime) {
    const ScenarioOnDisk scenario(R"({"intervals": {"publish": 20}})");
    ChildProcess server(vantricsim({"--scenario", scenario.path()}));
    ASSERT_TRUE(server.waitForOutput("ready\n"));
    SharedMemoryModemState segment;
    ModemState state;
    for (int round = 0; round < 3; ++round) {
        segment.accessor().memory()->valid = 0;
        EXPECT_TRUE(eventually([&] { return segment.read(state); }));
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
    ASSERT_TRUE(result.status);
    EXPECT_EQ(result.status->code(), 0);
    EXPECT_EQ(result.output, "ready\n");
    EXPECT_EQ(countObjects(), 0);
}

TEST_F(Vantricsim, endsWithTheScenariosExit) {
    const ScenarioOnDisk scenario(R"({"timeline": [{"at": 0.05, "do": "exit"}]})");
    const Result result = run(vantricsim({"--scenario", scenario.path()}));
    ASSERT_TRUE(result.status);
    EXPECT_EQ(result.status->code(), 0);
    EXPECT_EQ(countObjects(), 0);
}

TEST_F(Vantricsim, diesHoldingTheLockThatTheScenarioNames) {
    const std::pair<const char*, const char*> locks[] = {{"state", "ModemStateShmLock"},
                                                         {"extended", "ModemStateExLock"},
                                                         {"networks", "ModemWifiListLock"},
                                                         {"commands", "ModemCommandsShmLock"}};
    for (const auto& [segment, held] : locks) {
        const ScenarioOnDisk scenario(
            R"({"timeline": [{"at": 0, "do": "dieHoldingLock", "segment": ")" +
            std::string(segment) + R"("}]})");
        const Result result = run(vantricsim({"--scenario", scenario.path()}));
        ASSERT_TRUE(result.status);
        EXPECT_EQ(result.status->signal(), SIGKILL) << segment;
        EXPECT_EQ(result.output.rfind("ready\n", 0), 0U) << segment;
        for (const auto& [otherSegment, lock] : locks) {
            EXPECT_EQ(valueOf(lock), lock == held ? 0 : 1) << lock << " after " << segment;
        }
        EXPECT_EQ(countObjects(), 4) << segment;
    }
}

TEST_F(Vantricsim, diesHoldingALockEvenWhileVanished) {
    const ScenarioOnDisk scenario(
        R"({"timeline": [{"at": 0, "do": "vanish", "seconds": 100},
                         {"at": 0, "do": "dieHoldingLock", "segment": "networks"}]})");
    const Result result = run(vantricsim({"--scenario", scenario.path()}));
    ASSERT_TRUE(result.status);
    EXPECT_EQ(result.status->signal(), SIGKILL);
    EXPECT_EQ(valueOf("ModemWifiListLock"), 0);
}

TEST_F(Vantricsim, vanishesAndComesBack) {
    const ScenarioOnDisk scenario(
        R"({"timeline": [{"at": 0.05, "do": "vanish", "seconds": 0.5}]})");
    ChildProcess server(vantricsim({"--scenario", scenario.path()}));
    ASSERT_TRUE(server.waitForOutput("event vanish\n"));
    EXPECT_TRUE(eventually([] { return countObjects() == 0; }));
    ASSERT_TRUE(server.waitForOutput("returned\n"));
    EXPECT_EQ(countObjects(), 4);
}

TEST_F(Vantricsim, servesOnWhenNobodyReadsItsLinesAnyMore) {
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
    const ScenarioOnDisk scenario(R"({"networks": [{"ssid": "a", "signalLevel": "high"}]})");
    expectUsageFailure(
        {"--scenario", scenario.path()},
        "vantricsim: " + scenario.path() + ": networks[0].signalLevel: expected a whole number");
    expectUsageFailure({"--check", "--scenario", scenario.path()}, "networks[0].signalLevel");
}

TEST_F(Vantricsim, checksAScenarioWithoutRunningIt) {
    const ScenarioOnDisk scenario("{}");
    const Result result = run(vantricsim({"--check", "--scenario", scenario.path()}));
    ASSERT_TRUE(result.status);
    EXPECT_EQ(result.status->code(), 0);
    EXPECT_EQ(result.output + result.errors, "");
    EXPECT_EQ(countObjects(), 0);
}

TEST_F(Vantricsim, explainsItselfOnRequest) {
    const Result help = run(vantricsim({"--help"}));
    ASSERT_TRUE(help.status);
    EXPECT_EQ(help.status->code(), 0);
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
    ASSERT_TRUE(result.status);
    EXPECT_EQ(result.status->code(), 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors.rfind("vantricsim: Failed to open shared mem file, error: ", 0), 0U);
}

}  // namespace
