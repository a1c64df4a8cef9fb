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
using namespace vantric_test;
namespace LogInterface = com_qel::Korvel::LogInterface;

namespace {

static_assert(std::has_virtual_destructor_v<VyLog>);
static_assert(std::is_nothrow_destructible_v<VyLog>);
static_assert(std::is_same_v<decltype(std::declval<VyLog&>().stream()), std::ostream&>);

constexpr auto levelBeyondTheEnumeration = static_cast<VyLog::Level>(4);

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

TEST(VyLog, showsTheBaseNameInAFieldOf35AndTheLineInAFieldOf5) {
    const std::string nameOfTheField(35, 'n');
    const std::string longName(300, 'n');
    const std::string blanks(35, ' ');
    const struct {
        std::string path;
        int line;
        std::string fields;
    } rows[] = {
        {"Source", 1, padded(35, "Source") + "|    1|"},
        {"/a/b//c/Source.cpp", 1, padded(35, "Source.cpp") + "|    1|"},
        {"folder/", 1, blanks + "|    1|"},
        {"", 1, blanks + "|    1|"},
        {"folder/" + nameOfTheField, 1, nameOfTheField + "|    1|"},
        {"folder/" + longName, 1, longName + "|    1|"},
        {"f", 12345, padded(35, "f") + "|12345|"},
        {"f", std::numeric_limits<int>::max(), padded(35, "f") + "|2147483647|"},
        {"f", -1, padded(35, "f") + "|   -1|"},
    };
    for (const auto& [path, line, fields] : rows) {
        EXPECT_EQ(headerOf(path.c_str(), line), "error:   ERROR|" + fields);
    }
    EXPECT_EQ(headerOf(nullptr, 1), "error:   ERROR|UNKNOWN|    1|");
}

TEST(VyLog, omitsFileAndLineWhenTheyAreSwitchedOff) {
    const RecordCapture capture;
    VyLog::SetShowFileLine(false);
    VyLog(VyLog::Error, "folder/Source", 250, 0).stream() << "text";
    VyLog::SetShowFileLine(true);
    VyLog(VyLog::Error, "folder/Source", 250, 0).stream() << "text";
    EXPECT_EQ(capture.records(), (Records{"error:   ERROR|text", errorRecord("text")}));
}

TEST(VyLog, showsATraceCategoryAsSixteenLowerCaseDigitsAtAnyLevel) {
    const RecordCapture capture;
    VyLog(VyLog::Trace, "f", 1, 2).stream() << "text";
    VyLog::SetShowFileLine(false);
    VyLog(VyLog::Error, "f", 1, 0xFEDCBA9876543210).stream() << "text";
    EXPECT_EQ(capture.records(),
              (Records{"trace:   TRACE|" + padded(35, "f") + "|    1|TRACE:0x0000000000000002|text",
                       "error:   ERROR|TRACE:0xfedcba9876543210|text"}));
}

TEST(VyLog, leavesTheStreamDecimalAndLeftAdjustedOnlyAfterATraceCategory) {
    const RecordCapture capture;
    VyLog::SetShowFileLine(false);
    for (const uint64_t category : {uint64_t{0}, uint64_t{2}}) {
        VyLog record(VyLog::Info, "f", 1, category);
        record.stream().width(5);
        record.stream() << 255 << '|' << 10;
    }
    EXPECT_EQ(capture.records(), (Records{"info:    INFO|  255|10",
                                          "info:    INFO|TRACE:0x0000000000000002|255  |10"}));
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

TEST(VyLog, passesRecordsFromTheThresholdOn) {
    EXPECT_EQ(messagesThatPass(LogInterface::SeverityFatal), "");
    EXPECT_EQ(messagesThatPass(LogInterface::SeverityError), "e");
    EXPECT_EQ(messagesThatPass(LogInterface::SeverityWarning), "ew");
    EXPECT_EQ(messagesThatPass(LogInterface::SeverityInfo), "ewi");
    EXPECT_EQ(messagesThatPass(LogInterface::SeverityDebug), "ewi");
    EXPECT_EQ(messagesThatPass(LogInterface::SeverityTrace), "ewitu");
}

TEST(VyLog, judgesTheThresholdWhenTheRecordEnds) {
    auto record = std::make_unique<VyLog>(VyLog::Error, "f", 1, 0U);
    const RecordCapture capture;
    record.reset();
    EXPECT_EQ(capture.records().size(), 1U);
}

TEST(VyLog, wrapsRecordsInColoursExceptInfoOnesUntilTheyAreSwitchedOff) {
    const RecordCapture capture;
    VyLog::SetShowFileLine(false);
    VyLog::SetColors(true);
    writeOneRecordOfEachLevel();
    VyLog::SetColors(false);
    VyLog(VyLog::Error, "f", 1, 0).stream() << "e";
    EXPECT_EQ(capture.records(),
              (Records{"error: \x1b[22;31m  ERROR|e\x1b[01;37m",
                       "warning: \x1b[22;33mWARNING|w\x1b[01;37m", "info:    INFO|i",
                       "trace: \x1b[22;32m  TRACE|t\x1b[01;37m",
                       "trace: \x1b[22;32mUNKNOWN|u\x1b[01;37m", "error:   ERROR|e"}));
}

TEST(VyLog, keepsTheWholeTraceMaskWhichIsZeroAtFirst) {
    EXPECT_EQ(VyLog::TraceMask(), 0U);
    const RecordCapture capture;
    for (const uint64_t mask : {0x8000000000000001, uint64_t{4}}) {
        VyLog::SetTraceMask(mask);
        EXPECT_EQ(VyLog::TraceMask(), mask);
    }
}

TEST(VyLog, appendsTheWallClockWithSecondsAdjustedAsTheStreamIs) {
    const struct {
        uint64_t category;
        std::string header;
        const char* form;
    } rows[] = {
        {0, "info:    INFO|", "%12ld.%-8ld"},
        {1, "info:    INFO|TRACE:0x0000000000000001|", "%-12ld.%-8ld"},
    };
    for (const auto& [category, header, form] : rows) {
        const RecordCapture capture;
        VyLog::SetShowFileLine(false);
        timeval before = {};
        gettimeofday(&before, nullptr);
        {
            VyLog record(VyLog::Info, "f", 1, category);
            VyLog::AppendTimestamp(record);
        }
        timeval after = {};
        gettimeofday(&after, nullptr);
        ASSERT_EQ(capture.records().at(0).substr(0, header.size()), header);
        const std::string stamp = capture.records().at(0).substr(header.size());
        const long seconds = std::stol(stamp);
        const long microseconds = std::stol(stamp.substr(stamp.find('.') + 1));
        const timeval written = {seconds, microseconds};
        EXPECT_FALSE(timercmp(&written, &before, <)) << stamp;
        EXPECT_FALSE(timercmp(&after, &written, <)) << stamp;
        char expected[64];
        std::snprintf(expected, sizeof(expected), form, seconds, microseconds);
        EXPECT_EQ(stamp, expected);
    }
}
