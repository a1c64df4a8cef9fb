#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/transcripts/RecordedOutput.h"

namespace {

using namespace std::chrono_literals;
using vantric_test::escaped;
using vantric_test::RecordedOutput;
using vantric_test::shortened;
using vantric_test::timeText;

void writeTo(const RecordedOutput& output, const std::string& bytes) {
    ASSERT_EQ(write(output.descriptor(), bytes.data(), bytes.size()),
              static_cast<ssize_t>(bytes.size()));
}

TEST(Escaping, tellsEveryByteFromTheTextOfItsEscape) {
    EXPECT_EQ(escaped("a \"b\"~"), "a \"b\"~");
    EXPECT_EQ(escaped("\n\t\\"), "\\n\\t\\\\");
    EXPECT_EQ(escaped("\x01\x1f\x7f\x80\xff"), "\\x01\\x1f\\x7f\\x80\\xff");
    EXPECT_EQ(escaped("\\x01"), "\\\\x01");
    EXPECT_EQ(escaped(std::string_view("\0", 1)), "\\x00");
}

TEST(Shortening, countsLongRunsOnly) {
    EXPECT_EQ(shortened(""), "");
    EXPECT_EQ(shortened("aab"), "aab");
    EXPECT_EQ(shortened(std::string(199, 'a')), std::string(199, 'a'));
    EXPECT_EQ(shortened("b" + std::string(200, 'a') + "b"), "b\\{200 a}b");
    EXPECT_EQ(shortened(std::string(1000, 'a') + std::string(201, 'c')), "\\{1000 a}\\{201 c}");
}

TEST(TimeText, countsHoursToMilliseconds) {
    EXPECT_EQ(timeText(0ms), "00:00:00.000");
    EXPECT_EQ(timeText(1h + 2min + 3s + 4ms + 999us), "01:02:03.004");
}

TEST(RecordedOutput, keepsWritesApart) {
    RecordedOutput output;
    writeTo(output, "one");
    writeTo(output, " line\n\nand");
    output.collect([] { return 1s; });
    writeTo(output, "\n");
    output.collect([] { return 2s; });
    EXPECT_EQ(output.text(),
              "00:00:01.000 |one\n"
              "00:00:01.000 | line\\n\n"
              "             |\\n\n"
              "             |and\n"
              "00:00:02.000 |\\n\n");
}

TEST(RecordedOutput, hasRoomForHundredsOfWrites) {
    RecordedOutput output;
    for (int count = 0; count < 200; ++count) {
        writeTo(output, "x");
    }
    int writes = 0;
    output.collect([&] {
        ++writes;
        return 0s;
    });
    EXPECT_EQ(writes, 200);
}

}  // namespace
