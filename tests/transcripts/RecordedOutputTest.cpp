#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/transcripts/RecordedOutput.h"

namespace {

using namespace std::chrono_literals;
using namespace vantric_test;

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

// Collects one write for each letter of `text`, all at `time`.
void record(RecordedOutput& output, std::string_view text, std::chrono::seconds time) {
    for (const char letter : text) {
        writeTo(output, {letter});
    }
    output.collect([&] { return time; });
}

// The text of `writes` at each of these times.
std::string textOf(std::string_view writes, std::initializer_list<std::chrono::seconds> times) {
    RecordedOutput output;
    for (const auto time : times) {
        record(output, writes, time);
    }
    return output.text();
}

TEST(RecordedOutput, countsAWriteThatComesAgainAtEqualIntervals) {
    EXPECT_EQ(textOf("x", {0s, 3s, 6s, 9s, 13s}),
              "00:00:00.000 |x\n"
              "             (again 3 times, every 00:00:03.000)\n"
              "00:00:13.000 |x\n");
}

TEST(RecordedOutput, countsASeriesOfWritesThatComesAgain) {
    EXPECT_EQ(textOf("xy", {0s, 3s, 6s, 9s, 13s}),
              "00:00:00.000 |x\n"
              "00:00:00.000 |y\n"
              "             (the last 2 writes again 3 times, every 00:00:03.000)\n"
              "00:00:13.000 |x\n"
              "00:00:13.000 |y\n");
}

TEST(RecordedOutput, writesOutWhatComesAgainLessOften) {
    EXPECT_EQ(textOf("x", {0s, 3s, 6s}),
              "00:00:00.000 |x\n"
              "00:00:03.000 |x\n"
              "00:00:06.000 |x\n");
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
