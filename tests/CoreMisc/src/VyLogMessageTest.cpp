// The message of a record: appended pieces, and the stream that records lend each other.
#include <gtest/gtest.h>

#include <iomanip>
#include <limits>
#include <locale>
#include <new>
#include <sstream>

#include "CoreMisc/src/VyLog.h"
#include "tests/CoreMisc/LogTestSupport.h"
#include "tests/support/Allocations.h"

using com_qel::VyLog;
using vantric_test::Allocations;
using vantric_test::RecordCapture;
using Records = std::vector<std::string>;

namespace {

constexpr const char* header = "info:    INFO|";

// Records without file and line, collected.
class VyLogMessage : public testing::Test {
  protected:
    VyLogMessage() { VyLog::SetShowFileLine(false); }

    // What has been written, without headers.
    Records written() const {
        Records messages;
        for (const std::string& record : capture_.records()) {
            EXPECT_EQ(record.substr(0, std::string(header).size()), header);
            messages.push_back(record.substr(std::string(header).size()));
        }
        return messages;
    }

  private:
    RecordCapture capture_;
};

VyLog infoRecord() {
    return VyLog(VyLog::Info, "f", 1, 0);
}

// Groups digits in threes, as no locale of this machine needs to.
class Grouping : public std::numpunct<char> {
  protected:
    char do_thousands_sep() const override { return '\''; }
    std::string do_grouping() const override { return "\3"; }
};

std::locale groupingLocale() {
    return std::locale(std::locale::classic(), new Grouping);
}

// A value whose insertion logs.
struct LogsWhenInserted {};

std::ostream& operator<<(std::ostream& stream, const LogsWhenInserted&) {
    infoRecord().stream() << "inner " << std::hex << 255;
    return stream << 255;
}

}  // namespace

TEST_F(VyLogMessage, consistsOfItsAppendedPiecesInOrder) {
    infoRecord().append("text ").append(std::string("string ")).append(7).append("!");
    EXPECT_EQ(written(), Records{"text string 7!"});
}

TEST_F(VyLogMessage, appendsEveryIntegerWhole) {
    constexpr int64_t least = std::numeric_limits<int64_t>::min();
    constexpr int64_t greatest = std::numeric_limits<int64_t>::max();
    constexpr uint32_t greatestWord = std::numeric_limits<uint32_t>::max();
    infoRecord().append(0).append(" ").append(-1).append(" ").append(greatestWord);
    infoRecord().append(least).append(" ").append(greatest);
    EXPECT_EQ(written(), (Records{"0 -1 4294967295", "-9223372036854775808 9223372036854775807"}));
}

TEST_F(VyLogMessage, appendsTextsOfAnyLength) {
    const std::string text(100000, 'x');
    infoRecord().append("").append(text);
    EXPECT_EQ(written(), Records{text});
}

TEST_F(VyLogMessage, keepsTheOrderOfAppendedAndStreamedPieces) {
    {
        VyLog record(VyLog::Info, "f", 1, 0);
        record.append("a");
        record.stream() << 'b';
        record.append("c").stream() << "d";
    }
    EXPECT_EQ(written(), Records{"abcd"});
}

TEST_F(VyLogMessage, appendsInDecimalWhateverTheStreamIsSetTo) {
    {
        VyLog record(VyLog::Info, "f", 1, 0);
        record.stream() << std::hex << std::setw(8) << 255;
        record.append(255);
    }
    EXPECT_EQ(written(), Records{"      ff255"});
}

TEST_F(VyLogMessage, takesWhatIsWrittenPastTheInsertionOperators) {
    {
        VyLog record(VyLog::Info, "f", 1, 0);
        record.stream().put('a').write("bcd", 2) << std::flush;
        record.stream().rdbuf()->sputc('d');
        record.stream() << std::endl;
    }
    EXPECT_EQ(written(), Records{"abcd\n"});
}

TEST_F(VyLogMessage, hasAStreamInTheStateOfANewOne) {
    std::ostringstream other;
    {
        VyLog record(VyLog::Info, "f", 1, 0);
        std::ostream& stream = record.stream();
        stream << std::hex << std::showbase << std::left << std::setfill('*')
               << std::setprecision(2) << std::boolalpha << std::unitbuf;
        stream.tie(&other);
        stream.width(9);
        stream.setstate(std::ios_base::failbit);
    }
    {
        VyLog record(VyLog::Info, "f", 1, 0);
        const std::ostringstream fresh;
        std::ostream& stream = record.stream();
        EXPECT_EQ(stream.flags(), fresh.flags());
        EXPECT_EQ(stream.width(), fresh.width());
        EXPECT_EQ(stream.precision(), fresh.precision());
        EXPECT_EQ(stream.fill(), fresh.fill());
        EXPECT_EQ(stream.tie(), nullptr);
        EXPECT_TRUE(stream.good());
        stream << std::setw(5) << 10 << true << 1.2345678;
    }
    EXPECT_EQ(written(), (Records{"", "   1011.23457"}));
}

TEST_F(VyLogMessage, hasAStreamThatDoesNotThrowAfterOneThatDid) {
    {
        VyLog record(VyLog::Info, "f", 1, 0);
        record.stream().exceptions(std::ios_base::failbit);
        EXPECT_THROW(record.stream().setstate(std::ios_base::failbit), std::ios_base::failure);
    }
    {
        VyLog record(VyLog::Info, "f", 1, 0);
        EXPECT_EQ(record.stream().exceptions(), std::ios_base::goodbit);
        EXPECT_NO_THROW(record.stream().setstate(std::ios_base::failbit));
    }
    infoRecord().stream() << "text";
    EXPECT_EQ(written(), (Records{"", "", "text"}));
}

TEST_F(VyLogMessage, hasItsStreamBackAfterOneThatWasSentElsewhere) {
    std::ostringstream elsewhere;
    {
        VyLog record(VyLog::Info, "f", 1, 0);
        record.stream().rdbuf(elsewhere.rdbuf());
        record.stream() << "elsewhere";
    }
    infoRecord().stream() << "here";
    EXPECT_EQ(elsewhere.str(), "elsewhere");
    EXPECT_EQ(written(), (Records{"", "here"}));
}

TEST_F(VyLogMessage, doesNotInheritTheLocaleOfAnEarlierRecord) {
    {
        VyLog record(VyLog::Info, "f", 1, 0);
        record.stream().imbue(groupingLocale());
        record.stream() << 1234567;
    }
    infoRecord().stream() << 1234567;
    EXPECT_EQ(written(), (Records{"1'234'567", "1234567"}));
}

TEST_F(VyLogMessage, isStreamedInTheGlobalLocaleOfItsTime) {
    infoRecord().stream() << 1234567;
    const std::locale before = std::locale::global(groupingLocale());
    infoRecord().stream() << 1234567;
    std::locale::global(before);
    infoRecord().stream() << 1234567;
    EXPECT_EQ(written(), (Records{"1234567", "1'234'567", "1234567"}));
}

TEST_F(VyLogMessage, isAppendedInDecimalWhateverTheGlobalLocale) {
    const std::locale before = std::locale::global(groupingLocale());
    infoRecord().append(1234567);
    std::locale::global(before);
    EXPECT_EQ(written(), Records{"1234567"});
}

TEST_F(VyLogMessage, mayLogWhileItIsBeingStreamed) {
    infoRecord().stream() << "outer " << LogsWhenInserted() << " outer";
    EXPECT_EQ(written(), (Records{"inner ff", "outer 255 outer"}));
}

TEST_F(VyLogMessage, hasAStreamOfItsOwnWhileOthersAreOpen) {
    {
        VyLog first(VyLog::Info, "f", 1, 0);
        VyLog second(VyLog::Info, "f", 1, 0);
        VyLog third(VyLog::Info, "f", 1, 0);
        first.stream() << std::hex;
        second.stream() << std::showpos;
        for (const int number : {10, 11}) {
            third.stream() << number;
            second.stream() << number;
            first.stream() << number;
        }
    }
    EXPECT_EQ(written(), (Records{"1011", "+10+11", "ab"}));
}

TEST_F(VyLogMessage, goesOnWithoutAPieceForWhichThereIsNoMemory) {
    const std::string text(1000, 'x');
    {
        VyLog record(VyLog::Info, "f", 1, 0);
        record.append("before ");
        {
            const Allocations noMemory(1);
            record.append(text);
        }
        record.append("after");
    }
    EXPECT_EQ(written(), Records{"before after"});
}

TEST_F(VyLogMessage, endsAtAStreamedPieceForWhichThereIsNoMemory) {
    const std::string text(1000, 'x');
    {
        VyLog record(VyLog::Info, "f", 1, 0);
        record.stream() << "before";
        {
            const Allocations noMemory(1);
            EXPECT_NO_THROW(record.stream() << text);
        }
        record.stream() << "after";
        EXPECT_TRUE(record.stream().bad());
    }
    EXPECT_EQ(written(), Records{"before"});
}

TEST_F(VyLogMessage, throwsWhenThereIsNoMemoryForItsStream) {
    VyLog outer(VyLog::Info, "f", 1, 0);
    outer.stream() << "outer";
    {
        VyLog inner(VyLog::Info, "f", 1, 0);
        {
            const Allocations noMemory(1);
            EXPECT_THROW(inner.stream(), std::bad_alloc);
        }
        inner.stream() << "inner";
    }
    EXPECT_EQ(written(), Records{"inner"});
}

TEST(VyLogWithoutMemory, goesOnWithoutItsHeader) {
    const RecordCapture capture;
    {
        const Allocations noMemory(1);
        const VyLog record(VyLog::Error, "folder/Source", 250, 0);
    }
    EXPECT_EQ(capture.records(), Records{"error: "});
}
