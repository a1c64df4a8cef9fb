#include <gtest/gtest.h>

#include <cerrno>
#include <future>
#include <stdexcept>
#include <string>
#include <system_error>
#include <type_traits>
#include <vector>

#include "CoreMisc/LogInterface/Sink.h"
#include "tests/CoreMisc/MutexFault.h"
#include "tests/support/ProcessFacts.h"

namespace LogInterface = com_qel::Korvel::LogInterface;
using LogInterface::IBackEnd;
using LogInterface::ISink;
using LogInterface::Severity;
using LogInterface::Sink;
using vantric_test::BackgroundAction;
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

// Writes its first line only once it is told to.
class SlowBackEnd final : public IBackEnd {
  public:
    void Write(const char* line) override {
        if (lines.empty()) {
            entered_.set_value();
            isReleased_.get_future().wait();
        }
        lines.emplace_back(line);
    }
    void waitUntilEntered() { entered_.get_future().wait(); }
    void release() { isReleased_.set_value(); }

    Lines lines;

  private:
    std::promise<void> entered_;
    std::promise<void> isReleased_;
};

}  // namespace

TEST(Sink, handsTheLineOfTextAndSeveritysNameToTheBackEnd) {
    RecordingBackEnd backEnd;
    Sink sink(formatWithBrackets, &backEnd);
    ISink& asInterface = sink;
    for (uint32_t severity = 0; severity <= 6; ++severity) {
        asInterface.Write(static_cast<Severity>(severity), "text");
    }
    EXPECT_EQ(backEnd.lines,
              (Lines{"[trace][text]", "[debug][text]", "[info][text]", "[warning][text]",
                     "[error][text]", "[fatal][text]", "[unknown][text]"}));
}

TEST(Sink, leavesTheBackEndAloneAtItsEnd) {
    RecordingBackEnd backEnd;
    { Sink(formatWithBrackets, &backEnd).Write(error, "one"); }
    { Sink(formatWithBrackets, &backEnd).Write(error, "two"); }
    EXPECT_EQ(backEnd.lines, (Lines{"[error][one]", "[error][two]"}));
}

TEST(Sink, formatsOnlyAfterTheLineOfAnotherThreadAndSinkIsWritten) {
    SlowBackEnd slow;
    RecordingBackEnd fast;
    Sink firstSink(formatWithBrackets, &slow);
    Sink secondSink(formatWithBrackets, &fast);
    {
        const BackgroundAction first([&] { firstSink.Write(error, "one"); });
        slow.waitUntilEntered();
        const BackgroundAction second([&] { secondSink.Write(error, "two"); });
        EXPECT_TRUE(second.blocks());
        slow.release();
    }
    EXPECT_EQ(slow.lines, Lines{"[error][one]"});
    EXPECT_EQ(fast.lines, Lines{"[error][two]"});
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
    EXPECT_THROW(sink.Write(error, "bad"), std::length_error);
    sink.Write(error, "good");
    EXPECT_EQ(backEnd.lines, Lines{"[error][good]"});
}
