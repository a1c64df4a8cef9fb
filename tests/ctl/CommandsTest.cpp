// What the commands refuse, how they read secrets, and how they end early.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <unistd.h>

#include <csignal>

#include "tests/ctl/CtlRun.h"
#include "tests/support/Polling.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/RawSegment.h"

namespace {

using namespace vantric_test;

// The status of a run that must print one line on standard error and nothing else.
int statusOfRefusal(const Words& arguments) {
    const Result result = run(vantricctl(arguments));
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
    return result.status.code();
}

TEST(Commands, refuseWrongUseBeforeTheyTouchAnything) {
    const std::string longName(33, 'n');
    const std::vector<Words> wrong = {
        {"frobnicate"},
        {"scan", "--timeout", "12x"},
        {"scan", "--timeout", "0"},
        {"switch", "lan"},
        {"join", longName},
        {"join", ""},
        {"join", "home", "--encryption", "wep"},
        {"join", "a,b", "--encryption", "none"},
        {"join", "home", "--username", "u"},
        {"join", "home", "--encryption", "wpa2-enterprise"},
        {"join", "home", "--encryption", "wpa2-enterprise", "--username", "a,b"},
        {"join", "home", "--encryption", "wpa2"},  // without a password
        {"load-config", "/nonexistent/file"},
        {"load-config", "/dev/null", "--expect-hostname", longName},
    };
    for (const Words& arguments : wrong) {
        EXPECT_EQ(statusOfRefusal(arguments), 2) << testing::PrintToString(arguments);
    }
    EXPECT_EQ(sharedMemoryNames(), Words());
}

TEST(Commands, createNothingWithoutAServer) {
    const std::vector<Words> commands = {{"status"},
                                         {"watch"},
                                         {"scan"},
                                         {"switch", "wifi"},
                                         {"join", "home"},
                                         {"forget"},
                                         {"load-config", "/dev/null"}};
    for (const Words& arguments : commands) {
        EXPECT_EQ(statusOfRefusal(arguments), 3) << arguments[0];
    }
    EXPECT_EQ(sharedMemoryNames(), Words());
}

// A file that holds `text`, opened for reading.
int inputOf(const std::string& text) {
    int ends[2];
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    EXPECT_EQ(write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    close(ends[1]);
    return ends[0];
}

class ServedCommands : public testing::Test {
  protected:
    ServedCommands() {
        server.publishAt(secondsNow());
        server.extendedState.publish(someExtendedState(1));
        server.wifiList.publish(wifiListOf({10}, 1));
    }

    PublishedServer server;
};

TEST_F(ServedCommands, passOnThePasswordFromStandardInputAndNeverPrintIt) {
    server.answer([&](const Frame&) {
        auto state = freshState();
        setText(state.wifiSsid, "lab");
        setText(state.wifiPassword, "hush, hush");
        state.wifiEncryptionType = 5;
        setText(state.wifiConnectionState, "up");
        server.state.publish(state);
    });
    Command command =
        vantricctl({"join", "lab", "--encryption", "wpa2-enterprise", "--username", "eve"});
    command.standardInput = inputOf("hush, hush\nsecond line\n");
    const Result result = run(command);
    close(*command.standardInput);
    EXPECT_EQ(result.status.code(), 0) << result.errors;
    EXPECT_EQ(server.takeFrames(), Frames({{15, "lab,5,eve,hush, hush"}}));
    EXPECT_EQ((result.output + result.errors).find("hush"), std::string::npos);
}

TEST_F(ServedCommands, promptOnATerminalWithoutEcho) {
    int master = -1;
    int slave = -1;
    ASSERT_EQ(openpty(&master, &slave, nullptr, nullptr, nullptr), 0);
    Command command = vantricctl({"join", "lab", "--encryption", "wpa2", "--timeout", "1"});
    command.standardInput = slave;
    ChildProcess process(command);
    ASSERT_TRUE(eventually([&] { return process.errors() == "Password: "; }));
    ASSERT_EQ(write(master, "hush\n", 5), 5);
    ASSERT_TRUE(process.wait());
    fcntl(master, F_SETFL, O_NONBLOCK);
    char echoed[64];
    EXPECT_LE(read(master, echoed, sizeof(echoed)), 0);
    EXPECT_EQ(server.takeFrames(), Frames({{14, "lab,2,hush"}}));
    EXPECT_EQ((process.output() + process.errors()).find("hush"), std::string::npos);
    close(master);
    close(slave);
}

TEST_F(ServedCommands, endBySignalsAndDetach) {
    for (const int signal : {SIGINT, SIGTERM}) {
        ChildProcess process(vantricctl({"switch", "wifi"}));
        ASSERT_TRUE(eventually([] { return attachedProducers() == 1; }));
        process.sendSignal(signal);
        const auto status = process.wait();
        ASSERT_TRUE(status);
        EXPECT_EQ(status->code(), 128 + signal);
        EXPECT_EQ(attachedProducers(), 0U);
        EXPECT_EQ(attachCount("ModemCommandsShm"), 1U);
    }
}

TEST_F(ServedCommands, endQuietlyWhenTheirOutputHasNoReader) {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    close(ends[0]);
    Command command = vantricctl({"status", "--no-refresh"});
    command.standardOutput = ends[1];
    const Result result = run(command);
    close(ends[1]);
    EXPECT_EQ(result.status.code(), 1);
    EXPECT_EQ(result.errors, "");
}

TEST_F(ServedCommands, sayThatAFullRingTakesNoRequest) {
    Vantric::ClientServer::SharedMemoryModemCommands filler(false);
    const std::string payload(4088, 'x');
    filler.enqueue(12, payload.data(), 4088);
    EXPECT_EQ(statusOfRefusal({"forget"}), 1);
}

TEST_F(ServedCommands, doNotResizeARingOfAnotherVersion) {
    ASSERT_EQ(truncate("/dev/shm/ModemCommandsShm", 8192), 0);
    EXPECT_EQ(statusOfRefusal({"forget"}), 4);
    EXPECT_EQ(segmentLength("ModemCommandsShm"), 8192U);
}

}  // namespace
