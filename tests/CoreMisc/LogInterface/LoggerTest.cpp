// The logger itself: names, lines and dispatch. How it is configured has files of its own.
#include <gtest/gtest.h>

#include <cstdio>
#include <ctime>
#include <string>

#include "CoreMisc/LogInterface/Logger.h"
#include "tests/CoreMisc/LocalTime.h"
#include "tests/CoreMisc/LogTestSupport.h"
#include "tests/support/WallClockAt.h"

using namespace com_qel::Korvel::LogInterface;
using namespace vantric_test;

namespace {

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

constexpr int64_t noonInJune = 1781956800;

std::string expectedLine() {
    return "[" + localTimeNow() + "] <error>: text";
}

}  // namespace

TEST(Logger, namesTheSeverities) {
    const char* names[] = {"trace", "debug", "info", "warning", "error", "fatal", "unknown"};
    for (uint32_t severity = 0; severity < 7; ++severity) {
        EXPECT_STREQ(LevelName(static_cast<Severity>(severity)), names[severity]);
    }
    EXPECT_STREQ(LevelName(static_cast<Severity>(0xFFFFFFFF)), "unknown");
}

TEST(Logger, formatsALineAfterTheLocalTimeAndItsNewline) {
    const WallClockAt clock(noonInJune);
    const std::string longText(100000, 'x');
    for (const std::string& text :
         {std::string("a text"), longText, std::string(), std::string("text\n")}) {
        EXPECT_EQ(FormatLine("info", text.c_str()), "[" + localTimeNow() + "] <info>: " + text);
    }
}

TEST(Logger, stampsLinesByAClockThatGoesForwardsOrBackwards) {
    // The first line of a process may come in the first second of the epoch.
    for (const int64_t second : {int64_t{0}, noonInJune, noonInJune, noonInJune + 1,
                                 noonInJune + 86400, noonInJune - 3600, int64_t{-1}}) {
        const WallClockAt clock(second);
        EXPECT_EQ(FormatLine("error", "text"), expectedLine());
    }
}

TEST(Logger, stampsLinesInANewTimeZoneWithinTheSameSecond) {
    const WallClockAt clock(noonInJune);
    for (const char* zone :
         {"EAST-5", "WEST5", static_cast<const char*>(nullptr), "EAST-5:30", ""}) {
        const TimeZone changed(zone);
        const std::string line = FormatLine("error", "text");
        EXPECT_EQ(line, expectedLine());
    }
}

TEST(Logger, leavesAloneWhatTheProgramGotFromLocaltimeAndAsctime) {
    const WallClockAt clock(noonInJune);
    std::time_t start = 0;
    // NOLINTBEGIN(concurrency-mt-unsafe): there is one thread
    const std::tm* local = std::localtime(&start);
    const std::tm expected = *local;
    const char* text = std::asctime(local);
    // NOLINTEND(concurrency-mt-unsafe)
    const std::string expectedText = text;
    FormatLine("error", "text");
    EXPECT_EQ(local->tm_year, expected.tm_year);
    EXPECT_EQ(text, expectedText);
}

TEST(Logger, leavesOutTheStampOfAYearThatCannotBeShown) {
    // The first second is too late for localtime(), the second one for asctime(). A clock of 32
    // bits shows neither.
    for (const int64_t second : {int64_t{1} << 62, int64_t{67768007758905600}}) {
        const WallClockAt clock(second);
        const bool isClockRead = std::time(nullptr) == second;
        EXPECT_EQ(FormatLine("error", "text"), isClockRead ? "[] <error>: text" : expectedLine());
        EXPECT_EQ(isClockRead, sizeof(std::time_t) == sizeof(int64_t));
    }
}

TEST(Logger, startsWithTheFatalThresholdAndWithoutSinks) {
    const Result result = runRoleWith({{"VRAX_LOG_LEVEL", "trace"}}, "dispatchesUnconfigured");
    EXPECT_EQ(result.status.code(), 5);
    EXPECT_EQ(result.output, "");
}

TEST(Logger, dispatchesToEverySinkInOrderAndFiltersNothing) {
    const TemporaryFolder folder;
    const Result result = runRoleWith({}, "dispatchesToTwo", {folder.path()});
    EXPECT_EQ(result.status.code(), 0) << result.errors;
    EXPECT_EQ(result.output,
              "first trace text\nsecond trace text\nfirst unknown other\nsecond unknown other\n");
}
