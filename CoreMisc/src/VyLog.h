// A log record: built on the caller's stack, written when it goes out of scope.
//
//     VyLog(VyLog::Error, "Vantric/ModemClient", __LINE__, 0).stream() << "text" << value;
//
// A trace record is created only when VyLog::TraceMask() has the bit of its category set.
// Texts and integers need no stream: append() takes them for less, and a program that uses nothing
// else does not carry the standard streams.
//
// Construction writes the record's header, and the first record of the process configures the
// logger from the environment. Destruction drops the record when its severity is below the logger's
// threshold and otherwise dispatches it.
// Thread-safety: a record belongs to one thread. The switches (trace mask, file and line, colours)
// and the first record are unsynchronised: set up logging before starting threads.
#pragma once

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

namespace com_qel {

class VyLog {
  public:
    // How grave a record is, with the logger's severity for it.
    enum Level : uint32_t {
        Error = 0,    // SeverityError
        Warning = 1,  // SeverityWarning
        Info = 2,     // SeverityInfo
        Trace = 3     // SeverityTrace
    };

    // Begins a record with its header: level, file, line and trace category.
    //
    // `file` is a source path with static lifetime, of which the record shows the base name; null
    // shows "UNKNOWN". `category` is 0 for ordinary records and the trace category's bit for trace
    // records. A level outside the enumeration shows as "UNKNOWN" and counts as trace.
    // Throws what configuring the logger throws (std::bad_alloc). What there is no memory for
    // later, of header or message, is left out.
    VyLog(Level level, const char* file, int line, uint64_t category);

    // Filters and dispatches. An exception in here ends the process.
    virtual ~VyLog();

    VyLog(const VyLog&) = delete;
    VyLog& operator=(const VyLog&) = delete;

    // Where the message goes. After a trace record's header the stream is left-adjusted.
    // The stream cannot be positioned. It is lent to this record and formats like a new one; what a
    // caller leaves in its iword() and pword() or registers as a callback outlives the record.
    // Throws std::bad_alloc.
    std::ostream& stream();

    // Adds a text to the message, without a stream. Not a null pointer.
    VyLog& append(std::string_view text) noexcept;

    // Adds an integer in decimal: of any type, a char as well, up to int64_t's greatest.
    VyLog& append(int64_t number) noexcept;

    // The trace categories to be written, one bit each; 0 at start. The caller compares.
    static uint64_t TraceMask();

    // Replaces all of the trace categories.
    static void SetTraceMask(uint64_t mask);

    // Whether record headers show file and line; true at start.
    static void SetShowFileLine(bool show);

    // Whether records are wrapped in terminal colours; false at start. The closing sequence is bold
    // white, not a reset.
    static void SetColors(bool show);

    // Configures the logger from the environment unless a record has already done so.
    static void Init();

    // Writes the wall clock as seconds in a field of 12, ".", and microseconds left-adjusted in a
    // field of 8. The stream stays left-adjusted.
    static void AppendTimestamp(VyLog& record);

  private:
    class Stream;
    using LentStream = std::unique_ptr<Stream, void (*)(Stream*)>;

    std::string text_;
    // Set by the first call of stream(); the deleter takes the stream back.
    LentStream stream_{nullptr, nullptr};
    Level level_;
    const char* file_;
    int line_;
    uint64_t category_;
};

}  // namespace com_qel
