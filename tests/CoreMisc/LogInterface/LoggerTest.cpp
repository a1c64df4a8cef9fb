// The logger itself: names, lines and dispatch. How it is configured is tested next door.
#include <gtest/gtest.h>

#include <cstdio>
#include <optional>

#include "CoreMisc/LogInterface/Logger.h"
#include "tests/CoreMisc/LocalTime.h"
#include "tests/CoreMisc/LogTestSupport.h"
#include "tests/support/Polling.h"

using com_qel::Korvel::LogInterface::FormatLine;
using com_qel::Korvel::LogInterface::LevelName;
using com_qel::Korvel::LogInterface::Logger;
using com_qel::Korvel::LogInterface::Severity;
using com_qel::Korvel::LogInterface::SeverityFatal;
using vantric_test::localTimeNow;
using vantric_test::Result;
using vantric_test::RoleRegistration;
using vantric_test::runRoleWith;
using vantric_test::TimeZone;
using Arguments = std::vector<std::string>;

namespace {

// Formats within one second of the clock, so that the time in the line is known.
struct TimedLine {
    std::string time;
    std::string line;
};

TimedLine formatWithinASecond(const char* levelName, const char* text) {
    std::optional<TimedLine> result;
    vantric_test::eventually([&] {
        const std::string before = localTimeNow();
        const std::string line = FormatLine(levelName, text);
        if (localTimeNow() == before) {
            result = {before, line};
        }
        return result.has_value();
    });
    return result.value();
}

const RoleRegistration dispatchesUnconfigured("dispatchesUnconfigured", [](const Arguments&) {
    Logger& logger = Logger::Instance();
    logger.Dispatch(SeverityFatal, "text");
    return static_cast<int>(logger.Threshold());
});

const char* formatAsFirst(const char* levelName, const char* text) {
    std::printf("first %s %s\n", levelName, text);
    return "";
}

const char* formatAsSecond(const char* levelName, const char* text) {
    std::printf("second %s %s\n", levelName, text);
    return "";
}

const RoleRegistration dispatchesToTwo("dispatchesToTwo", [](const Arguments& arguments) {
    Logger& logger = Logger::Instance();
    logger.ConfigureFile("one", arguments.at(0), 0, formatAsFirst);
    logger.ConfigureFile("two", arguments.at(0), SeverityFatal, formatAsSecond);
    logger.Dispatch(static_cast<Severity>(0), "text");
    logger.Dispatch(static_cast<Severity>(9), "other");
    return 0;
});

}  // namespace

TEST(Logger, namesTheSeverities) {
    EXPECT_STREQ(LevelName(static_cast<Severity>(0)), "trace");
    EXPECT_STREQ(LevelName(static_cast<Severity>(1)), "debug");
    EXPECT_STREQ(LevelName(static_cast<Severity>(2)), "info");
    EXPECT_STREQ(LevelName(static_cast<Severity>(3)), "warning");
    EXPECT_STREQ(LevelName(static_cast<Severity>(4)), "error");
    EXPECT_STREQ(LevelName(static_cast<Severity>(5)), "fatal");
}

TEST(Logger, namesAnyOtherSeverityUnknown) {
    EXPECT_STREQ(LevelName(static_cast<Severity>(6)), "unknown");
    EXPECT_STREQ(LevelName(static_cast<Severity>(9)), "unknown");
    EXPECT_STREQ(LevelName(static_cast<Severity>(0xFFFFFFFF)), "unknown");
}

TEST(Logger, formatsALineBehindTheLocalTimeAndItsNewline) {
    const TimedLine result = formatWithinASecond("error", "text");
    EXPECT_EQ(result.line, "[" + result.time + "] <error>: text");
}

TEST(Logger, formatsTheTimeOfTheLocalZone) {
    const TimeZone zone("FarAway-11:30");
    const TimedLine result = formatWithinASecond("info", "text");
    EXPECT_EQ(result.line, "[" + result.time + "] <info>: text");
}

TEST(Logger, formatsALineAsLongAsItsText) {
    const std::string text(100000, 'x');
    const TimedLine result = formatWithinASecond("warning", text.c_str());
    EXPECT_EQ(result.line, "[" + result.time + "] <warning>: " + text);
}

TEST(Logger, formatsALineWithoutRestsOfTheOneBefore) {
    FormatLine("warning", "a text that is long");
    const TimedLine result = formatWithinASecond("info", "");
    EXPECT_EQ(result.line, "[" + result.time + "] <info>: ");
}

TEST(Logger, addsNoNewlineToAText) {
    const TimedLine result = formatWithinASecond("info", "text\n");
    EXPECT_EQ(result.line, "[" + result.time + "] <info>: text\n");
}

TEST(Logger, isTheSameForEverybody) {
    EXPECT_EQ(&Logger::Instance(), &Logger::Instance());
}

TEST(Logger, startsWithTheFatalThresholdAndWithoutSinks) {
    const Result result = runRoleWith({{"VRAX_LOG_LEVEL", "trace"}}, "dispatchesUnconfigured");
    EXPECT_EQ(result.status->code(), 5);
    EXPECT_EQ(result.output, "");
}

TEST(Logger, dispatchesToEverySinkInOrderAndFiltersNothing) {
    const vantric_test::TemporaryFolder folder;
    const Result result = runRoleWith({}, "dispatchesToTwo", {folder.path()});
    EXPECT_EQ(result.status->code(), 0) << result.errors;
    EXPECT_EQ(result.output,
              "first trace text\nsecond trace text\nfirst unknown other\nsecond unknown other\n");
}
