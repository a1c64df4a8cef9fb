// The text of a record and which records pass the threshold.
#include <gtest/gtest.h>
#include <sys/time.h>

#include <cstdio>
#include <limits>
#include <memory>
#include <type_traits>

#include "CoreMisc/src/VyLog.h"
#include "tests/CoreMisc/LogTestSupport.h"

using com_qel::VyLog;
using vantric_test::RecordCapture;
namespace LogInterface = com_qel::Korvel::LogInterface;
using Records = std::vector<std::string>;

namespace {

static_assert(std::has_virtual_destructor_v<VyLog>);
static_assert(std::is_nothrow_destructible_v<VyLog>);
static_assert(std::is_same_v<decltype(std::declval<VyLog&>().stream()), std::ostream&>);

constexpr auto levelBeyondTheEnumeration = static_cast<VyLog::Level>(4);
constexpr auto greatestLevel = static_cast<VyLog::Level>(0xFFFFFFFF);

std::string padded(std::size_t width, const std::string& text) {
    return std::string(width - text.size(), ' ') + text;
}

// What an error record from this file and line holds up to the message.
std::string headerOf(const char* file, int line) {
    const RecordCapture capture;
    { const VyLog record(VyLog::Error, file, line, 0); }
    return capture.records().at(0);
}

void writeOneRecordOfEachLevel() {
    VyLog(VyLog::Error, "f", 1, 0).stream() << "e";
    VyLog(VyLog::Warning, "f", 1, 0).stream() << "w";
    VyLog(VyLog::Info, "f", 1, 0).stream() << "i";
    VyLog(VyLog::Trace, "f", 1, 0).stream() << "t";
    VyLog(levelBeyondTheEnumeration, "f", 1, 0).stream() << "u";
}

// The last characters, in the order written, of the records that pass `threshold`.
std::string messagesThatPass(LogInterface::Severity threshold) {
    const RecordCapture capture(threshold);
    writeOneRecordOfEachLevel();
    std::string messages;
    for (const std::string& record : capture.records()) {
        messages += record.back();
    }
    return messages;
}

}  // namespace

TEST(VyLog, writesLevelFileAndLineInFixedFieldsBeforeTheMessage) {
    const RecordCapture capture;
    VyLog(VyLog::Error, "folder/sixteenLetters.x", 250, 0).stream() << "text " << 12 << '!';
    EXPECT_EQ(capture.records(),
              Records{"error:   ERROR|                   sixteenLetters.x|  250|text 12!"});
}

TEST(VyLog, namesEachLevelInAFieldOfSeven) {
    const RecordCapture capture;
    VyLog::SetShowFileLine(false);
    writeOneRecordOfEachLevel();
    EXPECT_EQ(capture.records(),
              (Records{"error:   ERROR|e", "warning: WARNING|w", "info:    INFO|i",
                       "trace:   TRACE|t", "trace: UNKNOWN|u"}));
}

TEST(VyLog, takesTheGreatestLevelForAnUnknownTrace) {
    const RecordCapture capture;
    VyLog::SetShowFileLine(false);
    VyLog(greatestLevel, "f", 1, 0).stream() << "u";
    EXPECT_EQ(capture.records(), Records{"trace: UNKNOWN|u"});
}

TEST(VyLog, showsAPathWithoutASlashWhole) {
    EXPECT_EQ(headerOf("Source", 1), "error:   ERROR|" + padded(35, "Source") + "|    1|");
}

TEST(VyLog, showsOnlyWhatFollowsTheLastSlash) {
    EXPECT_EQ(headerOf("/a/b//c/Source.cpp", 1),
              "error:   ERROR|" + padded(35, "Source.cpp") + "|    1|");
}

TEST(VyLog, showsBlanksForAPathThatEndsInASlash) {
    EXPECT_EQ(headerOf("folder/", 1), "error:   ERROR|" + std::string(35, ' ') + "|    1|");
}

TEST(VyLog, showsBlanksForAnEmptyPath) {
    EXPECT_EQ(headerOf("", 1), "error:   ERROR|" + std::string(35, ' ') + "|    1|");
}

TEST(VyLog, showsUnknownWithoutAFieldForANullFile) {
    EXPECT_EQ(headerOf(nullptr, 1), "error:   ERROR|UNKNOWN|    1|");
}

TEST(VyLog, showsABaseNameThatFillsItsFieldWithoutBlanks) {
    const std::string name(35, 'n');
    EXPECT_EQ(headerOf(("folder/" + name).c_str(), 1), "error:   ERROR|" + name + "|    1|");
}

TEST(VyLog, showsALongBaseNameWhole) {
    const std::string name(300, 'n');
    EXPECT_EQ(headerOf(("folder/" + name).c_str(), 1), "error:   ERROR|" + name + "|    1|");
}

TEST(VyLog, showsALongLineNumberWhole) {
    EXPECT_EQ(headerOf("f", 12345), "error:   ERROR|" + padded(35, "f") + "|12345|");
    EXPECT_EQ(headerOf("f", std::numeric_limits<int>::max()),
              "error:   ERROR|" + padded(35, "f") + "|2147483647|");
}

TEST(VyLog, showsANegativeLineNumber) {
    EXPECT_EQ(headerOf("f", -1), "error:   ERROR|" + padded(35, "f") + "|   -1|");
}

TEST(VyLog, omitsFileAndLineWhenTheyAreSwitchedOff) {
    const RecordCapture capture;
    VyLog::SetShowFileLine(false);
    VyLog(VyLog::Error, "folder/Source", 250, 0).stream() << "text";
    VyLog::SetShowFileLine(true);
    VyLog(VyLog::Error, "folder/Source", 250, 0).stream() << "text";
    EXPECT_EQ(capture.records(),
              (Records{"error:   ERROR|text", vantric_test::errorRecord("text")}));
}

TEST(VyLog, showsATraceCategoryAsSixteenHexadecimalDigits) {
    const RecordCapture capture;
    VyLog(VyLog::Trace, "f", 1, 2).stream() << "text";
    EXPECT_EQ(capture.records(), Records{"trace:   TRACE|" + padded(35, "f") +
                                         "|    1|TRACE:0x0000000000000002|text"});
}

TEST(VyLog, showsAFullTraceCategoryInLowerCase) {
    const RecordCapture capture;
    VyLog::SetShowFileLine(false);
    VyLog(VyLog::Trace, "f", 1, 0xFEDCBA9876543210).stream() << "text";
    EXPECT_EQ(capture.records(), Records{"trace:   TRACE|TRACE:0xfedcba9876543210|text"});
}

TEST(VyLog, showsTheTraceCategoryOfARecordOfAnyLevel) {
    const RecordCapture capture;
    VyLog::SetShowFileLine(false);
    VyLog(VyLog::Error, "f", 1, 1).stream() << "text";
    EXPECT_EQ(capture.records(), Records{"error:   ERROR|TRACE:0x0000000000000001|text"});
}

TEST(VyLog, leavesTheStreamDecimalLeftAdjustedAndBlankFilledBehindATraceCategory) {
    const RecordCapture capture;
    VyLog::SetShowFileLine(false);
    {
        VyLog record(VyLog::Trace, "f", 1, 2);
        record.stream().width(5);
        record.stream() << 255 << '|' << 10;
    }
    EXPECT_EQ(capture.records(), Records{"trace:   TRACE|TRACE:0x0000000000000002|255  |10"});
}

TEST(VyLog, leavesTheStreamRightAdjustedWithoutATraceCategory) {
    const RecordCapture capture;
    VyLog::SetShowFileLine(false);
    {
        VyLog record(VyLog::Info, "f", 1, 0);
        record.stream().width(5);
        record.stream() << 255 << '|' << 10;
    }
    EXPECT_EQ(capture.records(), Records{"info:    INFO|  255|10"});
}

TEST(VyLog, writesNothingBeforeTheRecordEnds) {
    const RecordCapture capture;
    {
        VyLog record(VyLog::Error, "f", 1, 0);
        record.stream() << "text" << std::flush;
        EXPECT_EQ(capture.records(), Records());
    }
    EXPECT_EQ(capture.records().size(), 1U);
}

TEST(VyLog, writesRecordsInTheOrderInWhichTheyEnd) {
    const RecordCapture capture;
    VyLog::SetShowFileLine(false);
    {
        VyLog outer(VyLog::Error, "f", 1, 0);
        outer.stream() << "outer";
        VyLog(VyLog::Error, "f", 1, 0).stream() << "inner";
    }
    EXPECT_EQ(capture.records(), (Records{"error:   ERROR|inner", "error:   ERROR|outer"}));
}

TEST(VyLog, writesARecordThatEndsThroughAPointerToIt) {
    struct Derived : VyLog {
        Derived() : VyLog(VyLog::Info, "f", 1, 0) { stream() << "derived"; }
    };
    const RecordCapture capture;
    VyLog::SetShowFileLine(false);
    { const std::unique_ptr<VyLog> record = std::make_unique<Derived>(); }
    EXPECT_EQ(capture.records(), Records{"info:    INFO|derived"});
}

TEST(VyLog, addsNothingToAMessageThatEndsALine) {
    const RecordCapture capture;
    VyLog::SetShowFileLine(false);
    VyLog(VyLog::Warning, "f", 1, 0).stream() << "text\n";
    EXPECT_EQ(capture.records(), Records{"warning: WARNING|text\n"});
}

TEST(VyLog, dropsEveryRecordAtTheFatalThreshold) {
    EXPECT_EQ(messagesThatPass(LogInterface::SeverityFatal), "");
}

TEST(VyLog, passesOnlyErrorsAtTheErrorThreshold) {
    EXPECT_EQ(messagesThatPass(LogInterface::SeverityError), "e");
}

TEST(VyLog, passesErrorsAndWarningsAtTheWarningThreshold) {
    EXPECT_EQ(messagesThatPass(LogInterface::SeverityWarning), "ew");
}

TEST(VyLog, passesAllButTracesAtTheInfoThreshold) {
    EXPECT_EQ(messagesThatPass(LogInterface::SeverityInfo), "ewi");
}

TEST(VyLog, passesAllButTracesAtTheDebugThreshold) {
    EXPECT_EQ(messagesThatPass(LogInterface::SeverityDebug), "ewi");
}

TEST(VyLog, passesEveryRecordAtTheTraceThreshold) {
    EXPECT_EQ(messagesThatPass(LogInterface::SeverityTrace), "ewitu");
}

TEST(VyLog, judgesTheThresholdWhenTheRecordEnds) {
    auto record = std::make_unique<VyLog>(VyLog::Error, "f", 1, 0U);
    const RecordCapture capture;
    record.reset();
    EXPECT_EQ(capture.records().size(), 1U);
}

TEST(VyLog, wrapsRecordsInColoursExceptInfoOnes) {
    const RecordCapture capture;
    VyLog::SetShowFileLine(false);
    VyLog::SetColors(true);
    writeOneRecordOfEachLevel();
    EXPECT_EQ(capture.records(),
              (Records{"error: \x1b[22;31m  ERROR|e\x1b[01;37m",
                       "warning: \x1b[22;33mWARNING|w\x1b[01;37m", "info:    INFO|i",
                       "trace: \x1b[22;32m  TRACE|t\x1b[01;37m",
                       "trace: \x1b[22;32mUNKNOWN|u\x1b[01;37m"}));
}

TEST(VyLog, dropsTheColoursWhenTheyAreSwitchedOffAgain) {
    const RecordCapture capture;
    VyLog::SetShowFileLine(false);
    VyLog::SetColors(true);
    VyLog::SetColors(false);
    writeOneRecordOfEachLevel();
    EXPECT_EQ(capture.records(),
              (Records{"error:   ERROR|e", "warning: WARNING|w", "info:    INFO|i",
                       "trace:   TRACE|t", "trace: UNKNOWN|u"}));
}

TEST(VyLog, startsWithoutTraceCategories) {
    EXPECT_EQ(VyLog::TraceMask(), 0U);
}

TEST(VyLog, keepsTheWholeTraceMask) {
    const RecordCapture capture;
    VyLog::SetTraceMask(0x8000000000000001);
    EXPECT_EQ(VyLog::TraceMask(), 0x8000000000000001U);
    VyLog::SetTraceMask(4);
    EXPECT_EQ(VyLog::TraceMask(), 4U);
}

namespace {

// Checks a record's stamp against the clock; `form` says how it is to be laid out.
void expectTimestamp(const std::string& stamp, const char* form, const timeval& before) {
    timeval after = {};
    gettimeofday(&after, nullptr);
    const long seconds = std::stol(stamp);
    const long microseconds = std::stol(stamp.substr(stamp.find('.') + 1));
    const timeval written = {seconds, microseconds};
    EXPECT_FALSE(timercmp(&written, &before, <)) << stamp;
    EXPECT_FALSE(timercmp(&after, &written, <)) << stamp;
    char expected[64];
    std::snprintf(expected, sizeof(expected), form, seconds, microseconds);
    EXPECT_EQ(stamp, expected);
}

}  // namespace

TEST(VyLog, appendsTheWallClockWithRightAlignedSecondsToAnOrdinaryRecord) {
    const RecordCapture capture;
    VyLog::SetShowFileLine(false);
    timeval before = {};
    gettimeofday(&before, nullptr);
    {
        VyLog record(VyLog::Info, "f", 1, 0);
        VyLog::AppendTimestamp(record);
    }
    const std::string header = "info:    INFO|";
    ASSERT_EQ(capture.records().at(0).substr(0, header.size()), header);
    expectTimestamp(capture.records().at(0).substr(header.size()), "%12ld.%-8ld", before);
}

TEST(VyLog, appendsTheWallClockWithLeftAlignedSecondsToATraceRecord) {
    const RecordCapture capture;
    VyLog::SetShowFileLine(false);
    timeval before = {};
    gettimeofday(&before, nullptr);
    {
        VyLog record(VyLog::Trace, "f", 1, 1);
        VyLog::AppendTimestamp(record);
    }
    const std::string header = "trace:   TRACE|TRACE:0x0000000000000001|";
    ASSERT_EQ(capture.records().at(0).substr(0, header.size()), header);
    expectTimestamp(capture.records().at(0).substr(header.size()), "%-12ld.%-8ld", before);
}
