#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <type_traits>
#include <vector>

#include "CoreMisc/LogInterface/Sink.h"
#include "tests/CoreMisc/MutexFault.h"

namespace LogInterface = com_qel::Korvel::LogInterface;
using LogInterface::IBackEnd;
using LogInterface::ISink;
using LogInterface::Severity;
using LogInterface::Sink;
using Lines = std::vector<std::string>;

namespace {

static_assert(!std::has_virtual_destructor_v<ISink>);
static_assert(!std::has_virtual_destructor_v<IBackEnd>);
static_assert(sizeof(ISink) == sizeof(void*) && sizeof(IBackEnd) == sizeof(void*));
static_assert(!std::is_destructible_v<ISink> && !std::is_destructible_v<IBackEnd>);

class RecordingBackEnd final : public IBackEnd {
  public:
    void Write(const char* line) override { lines.emplace_back(line); }
    Lines lines;
};

const char* formatWithBrackets(const char* levelName, const char* text) {
    static std::string line;
    line = std::string("[") + levelName + "][" + text + "]";
    return line.c_str();
}

const char* failToFormatBad(const char* levelName, const char* text) {
    if (std::string(text) == "bad") {
        throw std::length_error("no line");
    }
    return formatWithBrackets(levelName, text);
}

constexpr auto error = LogInterface::SeverityError;

// Notices when two threads are between formatting a line and having written it.
std::atomic<int> threadsInside{0};
std::atomic<bool> overlapped{false};

void enter() {
    if (threadsInside.fetch_add(1) != 0) {
        overlapped = true;
    }
    std::this_thread::yield();
}

const char* formatAndEnter(const char* /*levelName*/, const char* text) {
    enter();
    return text;
}

class LeavingBackEnd final : public IBackEnd {
  public:
    void Write(const char* /*line*/) override {
        std::this_thread::yield();
        ++lines;
        threadsInside.fetch_sub(1);
    }
    int lines = 0;
};

}  // namespace

TEST(Sink, handsTheFormattedLineToTheBackEnd) {
    RecordingBackEnd backEnd;
    Sink sink(formatWithBrackets, &backEnd);
    sink.Write(LogInterface::SeverityInfo, "text");
    EXPECT_EQ(backEnd.lines, Lines{"[info][text]"});
}

TEST(Sink, givesTheFormatterTheNameOfEverySeverity) {
    RecordingBackEnd backEnd;
    Sink sink(formatWithBrackets, &backEnd);
    for (uint32_t severity = 0; severity <= 6; ++severity) {
        sink.Write(static_cast<Severity>(severity), "");
    }
    EXPECT_EQ(backEnd.lines, (Lines{"[trace][]", "[debug][]", "[info][]", "[warning][]",
                                    "[error][]", "[fatal][]", "[unknown][]"}));
}

TEST(Sink, writesThroughItsInterface) {
    RecordingBackEnd backEnd;
    Sink sink(formatWithBrackets, &backEnd);
    ISink& asInterface = sink;
    asInterface.Write(error, "text");
    EXPECT_EQ(backEnd.lines, Lines{"[error][text]"});
}

TEST(Sink, leavesTheBackEndAloneAtItsEnd) {
    RecordingBackEnd backEnd;
    { Sink(formatWithBrackets, &backEnd).Write(error, "one"); }
    { Sink(formatWithBrackets, &backEnd).Write(error, "two"); }
    EXPECT_EQ(backEnd.lines, (Lines{"[error][one]", "[error][two]"}));
}

TEST(Sink, letsOneThreadFormatAndWriteAtATime) {
    constexpr int threadCount = 4;
    constexpr int linesPerThread = 2000;
    LeavingBackEnd backEnd;
    Sink sink(formatAndEnter, &backEnd);
    std::vector<std::thread> threads;
    threads.reserve(threadCount);
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([&sink] {
            for (int line = 0; line < linesPerThread; ++line) {
                sink.Write(error, "text");
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_FALSE(overlapped);
    EXPECT_EQ(backEnd.lines, threadCount * linesPerThread);
}

TEST(Sink, raisesASystemErrorWhenItsMutexCannotBeLocked) {
    RecordingBackEnd backEnd;
    Sink sink(formatWithBrackets, &backEnd);
    int code = 0;
    {
        const vantric_test::MutexFault fault(vantric_test::MutexCall::lock, EDEADLK, &sink,
                                             sizeof(sink));
        try {
            sink.Write(error, "text");
        } catch (const std::system_error& failure) {
            code = failure.code().value();
        }
    }
    EXPECT_EQ(code, EDEADLK);
    EXPECT_EQ(backEnd.lines, Lines());
}

TEST(Sink, canBeUsedAgainAfterAFormatterThatFailed) {
    RecordingBackEnd backEnd;
    Sink sink(failToFormatBad, &backEnd);
    const vantric_test::MutexFault watch(vantric_test::MutexCall::unlock, 0, &sink, sizeof(sink));
    EXPECT_THROW(sink.Write(error, "bad"), std::length_error);
    ASSERT_EQ(watch.calls(), 1);
    sink.Write(error, "good");
    EXPECT_EQ(backEnd.lines, Lines{"[error][good]"});
}
