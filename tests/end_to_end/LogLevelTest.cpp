// VRAX_LOG_LEVEL with every kind of text: which records pass.
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "tests/end_to_end/Bench.h"
#include "tests/end_to_end/HeldRequest.h"
#include "tests/end_to_end/LogLines.h"
#include "tests/end_to_end/LoggedRun.h"

namespace {

using vantric_test::forgetTimeoutRecord;
using vantric_test::lockRecord;
using vantric_test::LogSettings;
using vantric_test::normalised;
using vantric_test::PublishedServer;
using vantric_test::set;
using vantric_test::SettingText;
using vantric_test::unset;

enum class Passing { everything, errorsOnly, nothing };

struct LevelRow {
    SettingText text;
    Passing passing;
};

void PrintTo(const LevelRow& row, std::ostream* stream) {
    *stream << vantric_test::printable(row.text);
}

class LogLevel : public testing::TestWithParam<LevelRow> {};

// vantricprobe writes errors and warnings only; this brings one of each.
std::string printErrorAndWarning(const SettingText& level) {
    constexpr int minuteInNoTime = 400;
    LogSettings settings;
    set(settings, "VRAX_LOG_LEVEL", level);
    vantric_test::breakOneLock();
    PublishedServer server;
    server.state.publish(vantric_test::alwaysFresh(vantric_test::freshState()));
    const auto command = vantric_test::probe({"--forgetwifi"}, minuteInNoTime);
    return normalised(
        vantric_test::runCleanly(vantric_test::withSettings(command, settings)).output);
}

TEST_P(LogLevel, decidesWhichRecordsPass) {
    const Passing passing = GetParam().passing;
    std::string records;
    records += passing != Passing::nothing ? lockRecord : "";
    records += passing == Passing::everything ? forgetTimeoutRecord : "";
    EXPECT_EQ(printErrorAndWarning(GetParam().text), records + "Failed to forget wifi\n");
}

INSTANTIATE_TEST_SUITE_P(
    Names, LogLevel,
    testing::Values(LevelRow{"trace", Passing::everything}, LevelRow{"debug", Passing::everything},
                    LevelRow{"info", Passing::everything}, LevelRow{"warning", Passing::everything},
                    LevelRow{"error", Passing::errorsOnly}, LevelRow{"fatal", Passing::nothing},
                    LevelRow{unset, Passing::nothing}));

INSTANTIATE_TEST_SUITE_P(
    Numbers, LogLevel,
    testing::Values(LevelRow{"0", Passing::everything}, LevelRow{"1", Passing::everything},
                    LevelRow{"2", Passing::everything}, LevelRow{"3", Passing::everything},
                    LevelRow{"4", Passing::errorsOnly}, LevelRow{"5", Passing::nothing},
                    LevelRow{"+4", Passing::errorsOnly}, LevelRow{"-0", Passing::everything},
                    LevelRow{" 4", Passing::errorsOnly},
                    LevelRow{"\t\n\v\f\r 4", Passing::errorsOnly},
                    LevelRow{"4 ", Passing::errorsOnly}, LevelRow{"4x", Passing::errorsOnly},
                    LevelRow{"4.9", Passing::errorsOnly}, LevelRow{"4e3", Passing::errorsOnly},
                    LevelRow{"4trace", Passing::errorsOnly}, LevelRow{"04", Passing::errorsOnly},
                    LevelRow{"0000000000000000000000004", Passing::errorsOnly}));

// They leave the default.
INSTANTIATE_TEST_SUITE_P(
    NumbersOutOfRange, LogLevel,
    testing::Values(LevelRow{"6", Passing::nothing}, LevelRow{"7", Passing::nothing},
                    LevelRow{"010", Passing::nothing}, LevelRow{"-1", Passing::nothing},
                    LevelRow{"-4", Passing::nothing}, LevelRow{"256", Passing::nothing},
                    LevelRow{"4294967296", Passing::nothing},
                    LevelRow{"-4294967292", Passing::nothing},
                    LevelRow{"9223372036854775808", Passing::nothing},
                    LevelRow{"18446744073709551616", Passing::nothing},
                    LevelRow{"-18446744073709551616", Passing::nothing}));

// They count as 0.
INSTANTIATE_TEST_SUITE_P(
    TextsThatAreNoNumbers, LogLevel,
    testing::Values(LevelRow{"", Passing::everything}, LevelRow{" ", Passing::everything},
                    LevelRow{"FATAL", Passing::everything}, LevelRow{"Error", Passing::everything},
                    LevelRow{" fatal", Passing::everything},
                    LevelRow{"fatal ", Passing::everything},
                    LevelRow{"fatal\n", Passing::everything}, LevelRow{"fat", Passing::everything},
                    LevelRow{"error4", Passing::everything}, LevelRow{"x4", Passing::everything},
                    LevelRow{"+ 4", Passing::everything}, LevelRow{"--4", Passing::everything},
                    LevelRow{"+-4", Passing::everything}, LevelRow{"0x4", Passing::everything},
                    LevelRow{"0b100", Passing::everything}, LevelRow{"'4'", Passing::everything},
                    LevelRow{"\xEF\xBC\x94", Passing::everything}));

}  // namespace
