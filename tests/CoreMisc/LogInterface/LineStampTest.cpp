// The time stamp of a line, which lines of the same second may share.
#include <gtest/gtest.h>

#include <string>

#include "CoreMisc/LogInterface/Logger.h"
#include "tests/CoreMisc/LocalTime.h"
#include "tests/support/WallClockAt.h"

namespace {

using com_qel::Korvel::LogInterface::FormatLine;
using vantric_test::localTimeNow;
using vantric_test::TimeZone;
using vantric_test::WallClockAt;

constexpr int64_t noonInJune = 1781956800;

std::string expectedLine() {
    return "[" + localTimeNow() + "] <error>: text";
}

TEST(LineStamp, isTheSameForLinesOfTheSameSecond) {
    const WallClockAt clock(noonInJune);

    const std::string first = FormatLine("error", "text");

    EXPECT_EQ(first, expectedLine());
    EXPECT_EQ(FormatLine("error", "text"), first);
}

TEST(LineStamp, isNewWithEachSecond) {
    for (const int64_t second : {noonInJune, noonInJune + 1, noonInJune + 86400}) {
        const WallClockAt clock(second);
        EXPECT_EQ(FormatLine("error", "text"), expectedLine());
    }
}

TEST(LineStamp, followsAClockThatIsSetBack) {
    for (const int64_t second : {noonInJune, noonInJune - 3600, int64_t{0}, int64_t{-1}}) {
        const WallClockAt clock(second);
        EXPECT_EQ(FormatLine("error", "text"), expectedLine());
    }
}

TEST(LineStamp, followsTheTimeZoneWithinTheSameSecond) {
    const WallClockAt clock(noonInJune);
    for (const char* zone : {"EAST-5", "WEST5", "EAST-5:30", "", "UTC"}) {
        const TimeZone changed(zone);
        EXPECT_EQ(FormatLine("error", "text"), expectedLine()) << zone;
    }
}

TEST(LineStamp, followsATimeZoneThatIsTakenAwayWithinTheSameSecond) {
    const WallClockAt clock(noonInJune);
    const TimeZone before("EAST-5");
    EXPECT_EQ(FormatLine("error", "text"), expectedLine());
    {
        const TimeZone none(nullptr);
        EXPECT_EQ(FormatLine("error", "text"), expectedLine());
    }
    EXPECT_EQ(FormatLine("error", "text"), expectedLine());
}

}  // namespace
