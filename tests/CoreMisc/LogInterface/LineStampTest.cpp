// The time stamp of a line, which lines of the same second may share.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <ctime>
#include <string>

#include "CoreMisc/LogInterface/Logger.h"
#include "tests/support/WallClockAt.h"

namespace {

using com_qel::Korvel::LogInterface::FormatLine;
using vantric_test::WallClockAt;

constexpr int64_t noonInJune = 1781956800;

// What the C library makes of the clock and the time zone right now.
std::string expectedLine() {
    const std::time_t now = std::time(nullptr);
    return "[" + std::string(std::asctime(std::localtime(&now))) + "] <error>: text";
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
        setenv("TZ", zone, 1);
        EXPECT_EQ(FormatLine("error", "text"), expectedLine()) << zone;
    }
}

TEST(LineStamp, followsATimeZoneThatIsTakenAwayWithinTheSameSecond) {
    const WallClockAt clock(noonInJune);
    setenv("TZ", "EAST-5", 1);
    EXPECT_EQ(FormatLine("error", "text"), expectedLine());

    unsetenv("TZ");
    const std::string systemZone = FormatLine("error", "text");

    EXPECT_EQ(systemZone, expectedLine());
    setenv("TZ", "", 1);
    EXPECT_EQ(FormatLine("error", "text"), expectedLine());
}

}  // namespace
