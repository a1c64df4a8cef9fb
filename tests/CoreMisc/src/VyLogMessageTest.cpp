// The message of a record: appended pieces, and its stream.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <iomanip>
#include <limits>
#include <locale>
#include <new>
#include <sstream>
#include <utility>

#include "CoreMisc/src/VyLog.h"
#include "tests/CoreMisc/LogTestSupport.h"
#include "tests/support/Allocations.h"

using com_qel::VyLog;
using namespace vantric_test;

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

// What append() takes: numbers that fit into int64_t, and texts.
template <class Piece, class = void>
constexpr bool isAppendable = false;
template <class Piece>
constexpr bool isAppendable<Piece, decltype(void(infoRecord().append(std::declval<Piece>())))> =
    true;
static_assert(isAppendable<int64_t> && isAppendable<uint32_t> && isAppendable<char> &&
              isAppendable<bool> && isAppendable<const char*> && isAppendable<std::string>);
enum WideEnumeration : uint64_t {};
static_assert(!isAppendable<uint64_t> && !isAppendable<float> && !isAppendable<double> &&
              !isAppendable<long double> && !isAppendable<WideEnumeration> &&
              !isAppendable<std::atomic<uint64_t>&> &&
              !isAppendable<std::reference_wrapper<double>>);
static_assert(isAppendable<std::size_t> == (sizeof(std::size_t) < sizeof(int64_t)));

std::locale groupingLocale() {
    return std::locale(std::locale::classic(), new Grouping);
}

}  // namespace

TEST_F(VyLogMessage, consistsOfItsAppendedPiecesInOrder) {
    const std::string longText(100000, 'x');
    infoRecord().append("text ").append("").append(longText).append(7).append("!");
    EXPECT_EQ(written(), Records{"text " + longText + "7!"});
}

TEST_F(VyLogMessage, appendsEveryIntegerWhole) {
    constexpr int64_t least = std::numeric_limits<int64_t>::min();
    constexpr int64_t greatest = std::numeric_limits<int64_t>::max();
    constexpr uint32_t greatestWord = std::numeric_limits<uint32_t>::max();
    infoRecord().append(0).append(" ").append(-1).append(" ").append(greatestWord);
    infoRecord().append(least).append(" ").append(greatest);
    EXPECT_EQ(written(), (Records{"0 -1 4294967295", "-9223372036854775808 9223372036854775807"}));
}

TEST_F(VyLogMessage, keepsTheOrderOfAppendedAndStreamedPiecesAndAppendsInDecimal) {
    {
        VyLog record(VyLog::Info, "f", 1, 0);
        record.append("a");
        record.stream() << std::hex << std::setw(8) << 255;
        record.append(255).stream() << "d";
    }
    EXPECT_EQ(written(), Records{"a      ff255d"});
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

TEST_F(VyLogMessage, leavesNothingOnTheStreamOfTheNextRecord) {
    static int callbacks = 0;
    static const int word = std::ios_base::xalloc();
    std::ostringstream other;
    {
        VyLog record(VyLog::Info, "f", 1, 0);
        std::ostream& stream = record.stream();
        stream.imbue(groupingLocale());
        stream << std::hex << std::showbase << std::left << std::setfill('*') << std::setw(9)
               << std::setprecision(2) << std::boolalpha << std::unitbuf;
        stream.tie(&other);
        stream.iword(word) = 1;
        stream.pword(word) = &other;
        stream.register_callback([](auto, auto&, int) { ++callbacks; }, 0);
        stream.exceptions(std::ios_base::failbit);
        stream.rdbuf(other.rdbuf());
        EXPECT_THROW(stream.setstate(std::ios_base::failbit), std::ios_base::failure);
    }
    const int callbacksOfTheFirst = callbacks;
    {
        VyLog record(VyLog::Info, "f", 1, 0);
        const std::ostringstream fresh;
        std::ostream& stream = record.stream();
        EXPECT_EQ(stream.getloc(), fresh.getloc());
        EXPECT_EQ(stream.flags(), fresh.flags());
        EXPECT_EQ(stream.width(), fresh.width());
        EXPECT_EQ(stream.precision(), fresh.precision());
        EXPECT_EQ(stream.fill(), fresh.fill());
        EXPECT_EQ(stream.tie(), nullptr);
        EXPECT_EQ(stream.iword(word), 0);
        EXPECT_EQ(stream.pword(word), nullptr);
        EXPECT_EQ(stream.exceptions(), std::ios_base::goodbit);
        EXPECT_TRUE(stream.good());
        stream << 1234567;
    }
    EXPECT_EQ(callbacks, callbacksOfTheFirst);
    EXPECT_EQ(written(), (Records{"", "1234567"}));
}

TEST_F(VyLogMessage, keepsTheStateOfItsStreamBetweenInsertions) {
    {
        VyLog record(VyLog::Info, "f", 1, 0);
        record.stream() << std::hex;
        record.stream() << 255;
    }
    EXPECT_EQ(written(), Records{"ff"});
}

TEST_F(VyLogMessage, cannotBePositioned) {
    {
        VyLog record(VyLog::Info, "f", 1, 0);
        EXPECT_EQ(record.stream().tellp(), std::ostream::pos_type(-1));
        record.stream() << "before" << std::flush;
        EXPECT_TRUE(record.stream().seekp(0).fail());
        record.stream() << "lost";
        record.stream().clear();
        record.stream() << " after";
    }
    EXPECT_EQ(written(), Records{"before after"});
}

TEST_F(VyLogMessage, isStreamedInTheGlobalLocaleOfItsTimeButNotAppended) {
    const std::locale before = std::locale::global(groupingLocale());
    infoRecord().append(1234567).stream() << " " << 1234567;
    std::locale::global(before);
    EXPECT_EQ(written(), Records{"1234567 1'234'567"});
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
    {
        VyLog record(VyLog::Info, "f", 1, 0);
        {
            const Allocations noMemory(1);
            EXPECT_THROW(record.stream(), std::bad_alloc);
        }
        record.stream() << "text";
    }
    EXPECT_EQ(written(), Records{"text"});
}

TEST(VyLogWithoutMemory, goesOnWithoutItsHeader) {
    const RecordCapture capture;
    {
        const Allocations noMemory(1);
        const VyLog record(VyLog::Error, "folder/Source", 250, 0);
    }
    EXPECT_EQ(capture.records(), Records{"error: "});
}
