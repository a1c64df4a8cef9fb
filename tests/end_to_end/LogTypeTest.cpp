// VRAX_LOG_TYPE with every kind of text: where records go.
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "tests/end_to_end/LogLines.h"
#include "tests/end_to_end/LoggedRun.h"
#include "tests/end_to_end/PrivateDevices.h"
#include "tests/end_to_end/SystemLogDaemon.h"
#include "tests/end_to_end/Transcript.h"

namespace {

using vantric_test::connectionRecord;
using vantric_test::LogSettings;
using vantric_test::printErrors;
using vantric_test::repeated;
using vantric_test::set;
using vantric_test::SettingText;
using vantric_test::Tree;
using vantric_test::unset;
using vantric_test::WorkingFolder;

enum class Place { textFile, rollingFile, console, nowhere, systemLog };

struct TypeRow {
    SettingText text;
    Place place;
};

void PrintTo(const TypeRow& row, std::ostream* stream) {
    *stream << vantric_test::printable(row.text);
}

class LogType : public testing::TestWithParam<TypeRow> {};

TEST_P(LogType, decidesWhereRecordsGo) {
    vantric_test::refuseConnections();
    const WorkingFolder folder;
    vantric_test::PrivateDevices devices;
    vantric_test::SystemLogDaemon daemon;
    // A limit of 0 tells the two kinds of file apart.
    LogSettings settings = {{"VRAX_LOG_LEVEL", "trace"}, {"VRAX_LOG_SIZE", "0"}};
    set(settings, "VRAX_LOG_TYPE", GetParam().text);

    const Place place = GetParam().place;
    const std::string onConsole = place == Place::console ? connectionRecord : "";
    EXPECT_EQ(printErrors(2, settings), repeated(onConsole + "Failed to connect\n", 2));
    Tree files;
    if (place == Place::textFile) {
        files = {{"dummy", repeated(connectionRecord, 2)}};
    } else if (place == Place::rollingFile) {
        files = {{"dummy", connectionRecord}, {"dummy.old", connectionRecord}};
    }
    EXPECT_EQ(folder.tree(), files);
    EXPECT_EQ(daemon.take().size(), place == Place::systemLog ? 2U : 0U);
    EXPECT_EQ(devices.console(), "");
}

INSTANTIATE_TEST_SUITE_P(Names, LogType,
                         testing::Values(TypeRow{"text_file", Place::textFile},
                                         TypeRow{"rolling_text_file", Place::rollingFile},
                                         TypeRow{"console", Place::console},
                                         TypeRow{"inmemory", Place::nowhere},
                                         TypeRow{"syslog", Place::systemLog},
                                         TypeRow{unset, Place::console}));

INSTANTIATE_TEST_SUITE_P(
    Numbers, LogType,
    testing::Values(TypeRow{"0", Place::textFile}, TypeRow{"1", Place::rollingFile},
                    TypeRow{"2", Place::console}, TypeRow{"3", Place::nowhere},
                    TypeRow{"4", Place::systemLog}, TypeRow{"+1", Place::rollingFile},
                    TypeRow{"-0", Place::textFile}, TypeRow{" 4", Place::systemLog},
                    TypeRow{"\t\n\v\f\r 3", Place::nowhere}, TypeRow{"1 ", Place::rollingFile},
                    TypeRow{"3x", Place::nowhere}, TypeRow{"1.9", Place::rollingFile},
                    TypeRow{"4e0", Place::systemLog}, TypeRow{"3console", Place::nowhere},
                    TypeRow{"04", Place::systemLog}));

// They leave the default.
INSTANTIATE_TEST_SUITE_P(
    NumbersOutOfRange, LogType,
    testing::Values(TypeRow{"5", Place::console}, TypeRow{"9", Place::console},
                    TypeRow{"010", Place::console}, TypeRow{"-1", Place::console},
                    TypeRow{"-3", Place::console}, TypeRow{"256", Place::console},
                    TypeRow{"4294967297", Place::console}, TypeRow{"-4294967292", Place::console},
                    TypeRow{"18446744073709551617", Place::console},
                    TypeRow{"-18446744073709551617", Place::console}));

// They count as 0.
INSTANTIATE_TEST_SUITE_P(
    TextsThatAreNoNumbers, LogType,
    testing::Values(TypeRow{"", Place::textFile}, TypeRow{" ", Place::textFile},
                    TypeRow{"CONSOLE", Place::textFile}, TypeRow{"Syslog", Place::textFile},
                    TypeRow{" console", Place::textFile}, TypeRow{"console ", Place::textFile},
                    TypeRow{"rolling", Place::textFile}, TypeRow{"in_memory", Place::textFile},
                    TypeRow{"console2", Place::textFile}, TypeRow{"+ 3", Place::textFile},
                    TypeRow{"--3", Place::textFile}, TypeRow{"0x4", Place::textFile}));

}  // namespace
