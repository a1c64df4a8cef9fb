// What reaches the system log, to the byte, whether or not somebody listens to it.
#include <gtest/gtest.h>

#include <optional>
#include <regex>
#include <string>
#include <vector>

#include "tests/end_to_end/Bench.h"
#include "tests/end_to_end/HeldRequest.h"
#include "tests/end_to_end/LogLines.h"
#include "tests/end_to_end/PrivateDevices.h"
#include "tests/end_to_end/SteadyLogger.h"
#include "tests/end_to_end/SystemLogDaemon.h"
#include "tests/end_to_end/Transcript.h"

namespace {

using vantric_test::ChildProcess;
using vantric_test::connectionRecord;
using vantric_test::forgetTimeoutRecord;
using vantric_test::lockRecord;
using vantric_test::LogSettings;
using vantric_test::PrivateDevices;
using vantric_test::PublishedServer;
using vantric_test::repeated;
using vantric_test::staleHostnameRecord;
using vantric_test::SteadyLogger;
using vantric_test::SystemLogDaemon;
using vantric_test::textOf;
using Datagrams = std::vector<std::string>;

const LogSettings toTheSystemLog = {{"VRAX_LOG_LEVEL", "warning"}, {"VRAX_LOG_TYPE", "syslog"}};

// Facility "user", and the severity.
constexpr const char* asError = "<11>";
constexpr const char* asWarning = "<12>";

// Who sends, as it stands in front of every text.
std::string sender(const ChildProcess& process, const std::string& name = "vantricprobe") {
    return name + "[" + std::to_string(process.pid()) + "]: ";
}

// Datagrams with "STAMP" for the system log's time stamp, normalised.
Datagrams normalised(Datagrams datagrams) {
    static const std::regex stamp(
        R"(^(<[0-9]+>)(Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) )"
        R"(( [1-9]|[12][0-9]|3[01]) ([01][0-9]|2[0-3]):[0-5][0-9]:[0-5][0-9] )");
    for (std::string& datagram : datagrams) {
        datagram = vantric_test::normalised(std::regex_replace(datagram, stamp, "$1STAMP "));
    }
    return datagrams;
}

struct Ended {
    std::string sender;
    std::string output;
};

// Runs a command with the system log as its log.
Ended runLogging(const vantric_test::Command& command) {
    ChildProcess child(withSettings(command, toTheSystemLog));
    const auto status = child.wait(vantric_test::commandPatience);
    EXPECT_TRUE(status && status->code() == 0);
    EXPECT_EQ(child.errors(), "");
    return {sender(child), child.output()};
}

// A record of `logger`, and so many of them in datagrams.
std::string textFrom(SteadyLogger& logger) {
    return sender(logger.command()) + textOf(staleHostnameRecord);
}

Datagrams datagramsOf(SteadyLogger& logger, std::size_t count) {
    return Datagrams(count, asError + ("STAMP " + textFrom(logger)));
}

class SystemLog : public testing::Test {
  protected:
    // How many lines the console shows, each of them a record of `logger`.
    std::size_t countOnConsole(SteadyLogger& logger) {
        const std::string console = vantric_test::normalised(devices_.console());
        const std::string line = textFrom(logger) + "\r\n";
        const std::size_t count = vantric_test::countOf(console, line);
        EXPECT_EQ(console, repeated(line, count));
        return count;
    }

    PrivateDevices devices_;
};

TEST_F(SystemLog, getsEveryRecordInADatagramOfItsOwn) {
    SystemLogDaemon daemon;
    vantric_test::refuseConnections();
    const Ended run = runLogging(vantric_test::probe({"--forgetwifi", "--statuscapi"}));
    const std::string datagram = asError + ("STAMP " + run.sender) + textOf(connectionRecord);
    EXPECT_EQ(normalised(daemon.take()), (Datagrams{datagram, datagram}));
    EXPECT_EQ(run.output, "Failed to connect\nFailed to connect\n");
    EXPECT_EQ(devices_.console(), "");
}

TEST_F(SystemLog, getsErrorsAndWarningsUnderTheirPriorities) {
    SystemLogDaemon daemon;
    vantric_test::breakOneLock();
    PublishedServer server;
    server.state.publish(vantric_test::alwaysFresh(vantric_test::freshState()));
    const Ended run = runLogging(vantric_test::probe({"--forgetwifi"}, 400));
    EXPECT_EQ(normalised(daemon.take()),
              (Datagrams{asError + ("STAMP " + run.sender) + textOf(lockRecord),
                         asWarning + ("STAMP " + run.sender) + textOf(forgetTimeoutRecord)}));
    EXPECT_EQ(run.output, "Failed to forget wifi\n");
}

TEST_F(SystemLog, namesTheProgramAsItWasStarted) {
    SystemLogDaemon daemon;
    vantric_test::refuseConnections();
    vantric_test::Command command = vantric_test::probe({"--forgetwifi"});
    command.commandName = "./some where/probe";
    ChildProcess child(withSettings(command, toTheSystemLog));
    ASSERT_TRUE(child.wait().has_value());
    EXPECT_EQ(normalised(daemon.take()),
              Datagrams{asError + ("STAMP " + sender(child, "probe")) + textOf(connectionRecord)});
}

TEST_F(SystemLog, getsNothingBelowTheLevel) {
    SystemLogDaemon daemon;
    vantric_test::refuseConnections();
    LogSettings settings = toTheSystemLog;
    settings["VRAX_LOG_LEVEL"] = "fatal";
    vantric_test::runCleanly(withSettings(vantric_test::probe({"--forgetwifi"}), settings));
    EXPECT_EQ(daemon.take(), Datagrams());
}

TEST_F(SystemLog, goesToTheConsoleWhenNobodyListens) {
    vantric_test::refuseConnections();
    const Ended run = runLogging(vantric_test::probe({"--forgetwifi", "--statuscapi"}));
    EXPECT_EQ(vantric_test::normalised(devices_.console()),
              repeated(run.sender + textOf(connectionRecord) + "\r\n", 2));
    EXPECT_EQ(run.output, "Failed to connect\nFailed to connect\n");
}

TEST_F(SystemLog, isLostWithoutAListenerAndAConsole) {
    devices_.removeConsole();
    vantric_test::refuseConnections();
    EXPECT_EQ(runLogging(vantric_test::probe({"--forgetwifi"})).output, "Failed to connect\n");
}

TEST_F(SystemLog, findsAListenerThatComesLater) {
    SteadyLogger logger(toTheSystemLog);
    logger.pause();
    const std::size_t before = countOnConsole(logger);
    SystemLogDaemon daemon;
    logger.resume();
    logger.awaitRecords(2);
    const std::size_t count = logger.finish();
    EXPECT_GE(before, 1U);
    EXPECT_EQ(normalised(daemon.take()), datagramsOf(logger, count - before));
    EXPECT_EQ(countOnConsole(logger), before);
}

TEST_F(SystemLog, goesToTheConsoleWhileTheListenerIsAway) {
    std::optional<SystemLogDaemon> daemon(std::in_place);
    SteadyLogger logger(toTheSystemLog);
    logger.pause();
    const Datagrams before = normalised(daemon->take());
    daemon.reset();
    logger.resume();
    logger.awaitRecords(2);
    logger.pause();
    const std::size_t whileAway = countOnConsole(logger);
    daemon.emplace();
    logger.resume();
    logger.awaitRecords(2);
    const std::size_t count = logger.finish();
    EXPECT_GE(before.size(), 1U);
    EXPECT_EQ(before, datagramsOf(logger, before.size()));
    EXPECT_GE(whileAway, 2U);
    EXPECT_EQ(countOnConsole(logger), whileAway);
    EXPECT_EQ(normalised(daemon->take()), datagramsOf(logger, count - before.size() - whileAway));
}

TEST_F(SystemLog, reachesAListenerThatWasReplacedBetweenTwoRecords) {
    std::optional<SystemLogDaemon> daemon(std::in_place);
    SteadyLogger logger(toTheSystemLog);
    logger.pause();
    const std::size_t before = daemon->take().size();
    daemon.reset();
    daemon.emplace();
    logger.resume();
    logger.awaitRecords(2);
    const std::size_t count = logger.finish();
    EXPECT_EQ(normalised(daemon->take()), datagramsOf(logger, count - before));
    EXPECT_EQ(devices_.console(), "");
}

}  // namespace
