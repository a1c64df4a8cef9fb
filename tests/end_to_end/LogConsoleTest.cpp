// Log lines on standard output: when they leave the process, compared with those in a file.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <string>

#include "tests/end_to_end/Bench.h"
#include "tests/end_to_end/HeldRequest.h"
#include "tests/end_to_end/LogLines.h"
#include "tests/end_to_end/LoggedRun.h"
#include "tests/support/Polling.h"

namespace {

using vantric_test::bytesOf;
using vantric_test::ChildProcess;
using vantric_test::eventually;
using vantric_test::lockRecord;
using vantric_test::LogSettings;
using vantric_test::normalised;
using vantric_test::PublishedServer;
using vantric_test::WorkingFolder;

const LogSettings errorsToTheConsole = {{"VRAX_LOG_LEVEL", "error"}};
const LogSettings errorsToAFile = {{"VRAX_LOG_LEVEL", "error"}, {"VRAX_LOG_TYPE", "text_file"}};

// A command that has written one record and now waits, without having ended a line of its own.
class WaitingCommand {
  public:
    // Standard output goes to `standardOutput`, if it is given.
    explicit WaitingCommand(const LogSettings& settings, std::optional<int> standardOutput = {})
        : command_(withOneRecord(settings, standardOutput)) {
        const auto hasAsked = [this] { return !server_.takeFrames().empty(); };
        EXPECT_TRUE(eventually(hasAsked, vantric_test::commandPatience));
    }

    ChildProcess& command() { return command_; }

    // Grants what the command waits for and so lets it end.
    void release() {
        auto state = vantric_test::alwaysFresh(vantric_test::freshState());
        vantric_test::setText(state.wifiPassword, "");
        state.wifiEncryptionType = 0;
        server_.state.publish(state);
        const auto status = command_.wait(vantric_test::commandPatience);
        EXPECT_TRUE(status && status->code() == 0);
        EXPECT_EQ(command_.errors(), "");
    }

    void kill() {
        command_.sendSignal(SIGKILL);
        EXPECT_TRUE(command_.wait().has_value());
    }

  private:
    vantric_test::Command withOneRecord(const LogSettings& settings,
                                        std::optional<int> standardOutput) {
        server_.state.publish(vantric_test::alwaysFresh(vantric_test::freshState()));
        auto command = withSettings(vantric_test::probe({"--forgetwifi"}), settings);
        command.standardOutput = standardOutput;
        return command;
    }

    struct BrokenLock {
        BrokenLock() { vantric_test::breakOneLock(); }
    };

    BrokenLock lock_;
    PublishedServer server_;
    ChildProcess command_;
};

constexpr const char* success = "Successfully forgot the wifi settings after #ms.\n";

TEST(LogConsole, aRecordLeavesWithTheNextLineOfTheCommand) {
    WaitingCommand waiting(errorsToTheConsole);
    EXPECT_EQ(waiting.command().output(), "");
    waiting.release();
    EXPECT_EQ(normalised(waiting.command().output()), std::string(lockRecord) + success);
}

TEST(LogConsole, aRecordThatHasNotLeftIsLostWhenTheProcessIsKilled) {
    WaitingCommand waiting(errorsToTheConsole);
    waiting.kill();
    EXPECT_EQ(waiting.command().output(), "");
}

// A terminal, as seen by whoever looks at it.
class Terminal {
  public:
    Terminal() : screen_(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
        char name[64] = "";
        const bool isReady = grantpt(screen_) == 0 && unlockpt(screen_) == 0 &&
                             ptsname_r(screen_, name, sizeof(name)) == 0;
        line_ = isReady ? open(name, O_RDWR | O_NOCTTY | O_CLOEXEC) : -1;
        EXPECT_NE(line_, -1);
    }
    ~Terminal() {
        close(line_);
        close(screen_);
    }

    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    int line() const { return line_; }

    // Everything shown so far, normalised, without the carriage returns that the line adds.
    std::string text() {
        char block[4096];
        ssize_t size = 0;
        while ((size = read(screen_, block, sizeof(block))) > 0) {
            text_.append(block, static_cast<std::size_t>(size));
        }
        std::string lines = text_;
        lines.erase(std::remove(lines.begin(), lines.end(), '\r'), lines.end());
        return normalised(lines);
    }

  private:
    int screen_;
    int line_ = -1;
    std::string text_;
};

TEST(LogConsole, aTerminalShowsARecordAtOnce) {
    Terminal terminal;
    WaitingCommand waiting(errorsToTheConsole, terminal.line());
    EXPECT_EQ(terminal.text(), lockRecord);
    waiting.release();
    EXPECT_EQ(terminal.text(), std::string(lockRecord) + success);
}

TEST(LogConsole, aRecordThatStandardOutputRefusesIsLost) {
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    ASSERT_NE(full, -1);
    vantric_test::refuseConnections();
    auto command = withSettings(vantric_test::probe({"--forgetwifi"}), errorsToTheConsole);
    command.standardOutput = full;
    vantric_test::runCleanly(command);
    close(full);
}

TEST(LogConsole, aFileHasItsRecordAtOnceAndKeepsItWhenTheProcessIsKilled) {
    for (const char* type : {"text_file", "rolling_text_file"}) {
        const WorkingFolder folder;
        LogSettings settings = errorsToAFile;
        settings["VRAX_LOG_TYPE"] = type;
        WaitingCommand waiting(settings);
        EXPECT_EQ(normalised(bytesOf("dummy")), lockRecord);
        waiting.kill();
        EXPECT_EQ(normalised(bytesOf("dummy")), lockRecord);
    }
}

}  // namespace
