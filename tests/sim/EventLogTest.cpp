#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

#include "sim/EventLog.h"

namespace {

using namespace std::chrono_literals;
using namespace vantric_sim;

void useTimeZone(const char* zone) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the test has one thread
    setenv("TZ", zone, 1);
    tzset();
}

TEST(EventLog, stampsWithLocalTimeAndMilliseconds) {
    useTimeZone("UTC-2");  // two hours east
    const WallTime time = WallTime(std::chrono::seconds(1795232124)) + 7ms + 999us;
    EXPECT_EQ(stampText(time), "2026-11-21 05:35:24.007");
}

TEST(EventLog, stampsTimesBeforeTheEpochWithoutNegativeMilliseconds) {
    useTimeZone("UTC");
    EXPECT_EQ(stampText(WallTime(-1ms)), "1969-12-31 23:59:59.999");
}

TEST(EventLog, quotesPrintableTextAndEscapesTheRest) {
    EXPECT_EQ(quoted(""), R"("")");
    EXPECT_EQ(quoted("a Z,~ 'x'"), R"("a Z,~ 'x'")");
    EXPECT_EQ(quoted(R"(a"b\c)"), R"("a\"b\\c")");
    EXPECT_EQ(quoted(std::string_view("\0\n\x1f\x20\x7e\x7f\x80\xff", 8)),
              R"("\x00\x0a\x1f ~\x7f\x80\xff")");
}

}  // namespace
