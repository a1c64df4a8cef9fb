// VRAX_LOG_SIZE with every kind of text: to the byte when a rolling file is set aside.
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "tests/end_to_end/LogLines.h"
#include "tests/end_to_end/LoggedRun.h"
#include "tests/end_to_end/Transcript.h"

namespace {

using vantric_test::connectionRecord;
using vantric_test::connectionRecordSize;
using vantric_test::failuresToConnect;
using vantric_test::printErrors;
using vantric_test::repeated;
using vantric_test::rollingFile;
using vantric_test::SettingText;
using vantric_test::Tree;
using vantric_test::unset;
using vantric_test::WorkingFolder;

// The files after so many error records.
Tree treeAfter(std::size_t recordCount, const SettingText& size) {
    const WorkingFolder folder;
    EXPECT_EQ(printErrors(recordCount, rollingFile(size)), failuresToConnect(recordCount));
    return folder.tree();
}

std::string connectionRecords(std::size_t count) {
    return repeated(connectionRecord, count);
}

// What a row's text may contain to stand for a number that depends on the size of a record.
constexpr const char* numberMark = "#";

std::string withNumber(std::string text, std::size_t number) {
    const std::size_t mark = text.find(numberMark);
    return mark == std::string::npos ? text : text.replace(mark, 1, std::to_string(number));
}

class LogSizeNumber : public testing::TestWithParam<const char*> {};

TEST_P(LogSizeNumber, isTheLastByteThatAFileMayHaveBeforeALine) {
    vantric_test::refuseConnections();
    EXPECT_EQ(treeAfter(2, withNumber(GetParam(), connectionRecordSize)),
              (Tree{{"dummy", connectionRecords(2)}}));
    EXPECT_EQ(treeAfter(2, withNumber(GetParam(), connectionRecordSize - 1)),
              (Tree{{"dummy", connectionRecord}, {"dummy.old", connectionRecord}}));
}

INSTANTIATE_TEST_SUITE_P(Forms, LogSizeNumber,
                         testing::Values("#", "+#", " #", "\t\n\v\f\r #", "# ", "#x", "#.9", "#e9",
                                         "# 0", "000#", "#,000"));

enum class Rolling { never, beforeLinesButTheFirst, beforeEveryLine };

struct SizeRow {
    SettingText text;
    Rolling rolling;
};

void PrintTo(const SizeRow& row, std::ostream* stream) {
    *stream << vantric_test::printable(row.text);
}

class LogSize : public testing::TestWithParam<SizeRow> {};

Tree filesAfterOneRecord(Rolling rolling) {
    Tree tree = {{"dummy", connectionRecord}};
    if (rolling == Rolling::beforeEveryLine) {
        tree["dummy.old"] = "";
    }
    return tree;
}

Tree filesAfterThreeRecords(Rolling rolling) {
    if (rolling == Rolling::never) {
        return {{"dummy", connectionRecords(3)}};
    }
    return {{"dummy", connectionRecord}, {"dummy.old", connectionRecord}};
}

TEST_P(LogSize, decidesWhenAFileIsSetAside) {
    vantric_test::refuseConnections();
    EXPECT_EQ(treeAfter(1, GetParam().text), filesAfterOneRecord(GetParam().rolling));
    EXPECT_EQ(treeAfter(3, GetParam().text), filesAfterThreeRecords(GetParam().rolling));
}

// Numbers are cut to 32 bits and taken as signed; where long has 32 bits, the conversion itself
// stops at the greatest unsigned number.
constexpr bool longHas64Bits = sizeof(long) == 8;

INSTANTIATE_TEST_SUITE_P(
    Numbers, LogSize,
    testing::Values(
        SizeRow{unset, Rolling::never}, SizeRow{"2147483647", Rolling::never},
        SizeRow{"-2147483649", Rolling::never}, SizeRow{"0", Rolling::beforeLinesButTheFirst},
        SizeRow{"-0", Rolling::beforeLinesButTheFirst},
        SizeRow{"1", Rolling::beforeLinesButTheFirst},
        SizeRow{"010", Rolling::beforeLinesButTheFirst},
        SizeRow{"2147483648", Rolling::beforeEveryLine},
        SizeRow{"4294967295", Rolling::beforeEveryLine}, SizeRow{"-1", Rolling::beforeEveryLine},
        SizeRow{"-2", Rolling::beforeEveryLine}, SizeRow{"-2147483648", Rolling::beforeEveryLine},
        SizeRow{"18446744073709551615", Rolling::beforeEveryLine},
        SizeRow{"18446744073709551616", Rolling::beforeEveryLine},
        SizeRow{"-18446744073709551616", Rolling::beforeEveryLine},
        SizeRow{"4294967296",
                longHas64Bits ? Rolling::beforeLinesButTheFirst : Rolling::beforeEveryLine},
        SizeRow{"4294972296", longHas64Bits ? Rolling::never : Rolling::beforeEveryLine}));

INSTANTIATE_TEST_SUITE_P(TextsThatAreNoNumbers, LogSize,
                         testing::Values(SizeRow{"", Rolling::beforeLinesButTheFirst},
                                         SizeRow{" ", Rolling::beforeLinesButTheFirst},
                                         SizeRow{"abc", Rolling::beforeLinesButTheFirst},
                                         SizeRow{"x5000", Rolling::beforeLinesButTheFirst},
                                         SizeRow{"+ 5000", Rolling::beforeLinesButTheFirst},
                                         SizeRow{"--1", Rolling::beforeLinesButTheFirst},
                                         SizeRow{"+-1", Rolling::beforeLinesButTheFirst},
                                         SizeRow{"0x5000", Rolling::beforeLinesButTheFirst},
                                         SizeRow{"5,000", Rolling::beforeLinesButTheFirst}));

}  // namespace
