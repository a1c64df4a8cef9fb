/// \class com_qel::VyLog
/// A log record: built on the caller's stack, written when it goes out of scope.
///
///     VyLog(VyLog::Error, "Vantric/ModemClient", __LINE__, 0).stream() << "text" << value;
///
/// A trace record is created only when VyLog::TraceMask() has the bit of its category set.
/// append() takes texts and integers at a lower cost than the stream, and a program that uses
/// nothing else does not carry the standard streams.
///
/// Construction writes the record's header, and the first record of the process configures the
/// logger from the environment. Destruction drops the record when its severity is below the
/// logger's threshold and otherwise dispatches it. Thread-safety: a record belongs to one thread;
/// any number of threads may have records of their own, the first one of the process included. The
/// switches (trace mask, file and line, colours) are unsynchronised: set them before starting
/// threads. A thread must not be cancelled while it writes a record: that ends the process. Code
/// that runs while a record is written, such as a replaced operator new or a signal handler, must
/// not log: its record would wait forever. Fork-safety: a child that a process with threads has
/// forked must not log before it executes a program: another thread may have held a lock of the
/// log.
#pragma once

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>

#include "CoreMisc/Export.h"

namespace com_qel {

class VANTRIC_EXPORT VyLog {
  public:
    /// The level of a record, and the severity that the logger gives it.
    enum Level : uint32_t {
        Error = 0,    ///< SeverityError
        Warning = 1,  ///< SeverityWarning
        Info = 2,     ///< SeverityInfo
        Trace = 3     ///< SeverityTrace
    };

    /// Begins a record with its header: level, file, line and trace category.
    ///
    /// `file` is a source path with static lifetime, of which the record shows the base name; null
    /// shows "UNKNOWN". `category` is 0 for ordinary records and the trace category's bit for trace
    /// records. A level outside the enumeration shows as "UNKNOWN" and counts as trace.
    /// Throws what configuring the logger throws (std::bad_alloc). What there is no memory for
    /// later, of header or message, is left out.
    VyLog(Level level, const char* file, int line, uint64_t category);

    /// Filters and dispatches. An exception in here ends the process.
    virtual ~VyLog();

    VyLog(const VyLog&) = delete;
    VyLog& operator=(const VyLog&) = delete;

    /// The record's own stream, whose output becomes part of the message. The first call makes it,
    /// with the global locale of that moment; it ends with the record. After a trace record's
    /// header it is left-adjusted. It cannot be positioned: tellp() returns -1 and seekp() makes it
    /// fail, after which it takes nothing more until clear(). Throws std::bad_alloc.
    std::ostream& stream();

    /// Adds a text to the message, without a stream. Not a null pointer.
    VyLog& append(std::string_view text) noexcept;

    /// Adds an integer in decimal; a char counts as an integer.
    VyLog& append(int64_t number) noexcept;

    /// Takes nothing else, because a conversion might change the value: no floating-point number,
    /// no enumeration, no wrapper of a number and no integer that int64_t cannot hold. So a
    /// std::size_t compiles on 32-bit machines and not on 64-bit ones. Insert such a value into
    /// stream(), or convert it where its range is known.
    template <class Other,
              std::enable_if_t<!std::is_convertible_v<const Other&, std::string_view> &&
                                   !(std::is_integral_v<Other> &&
                                     (std::is_signed_v<Other> ? sizeof(Other) <= sizeof(int64_t)
                                                              : sizeof(Other) < sizeof(int64_t))),
                               int> = 0>
    VyLog& append(const Other& value) = delete;

    /// The trace categories to be written, one bit each; 0 at start. The caller compares.
    static uint64_t TraceMask();

    /// Replaces all of the trace categories.
    static void SetTraceMask(uint64_t mask);

    /// Whether record headers show file and line; true at start.
    static void SetShowFileLine(bool show);

    /// Whether records are wrapped in terminal colours; false at start. The closing sequence is
    /// bold white, not a reset.
    static void SetColors(bool show);

    /// Configures the logger from the environment unless a record has already done so. One thread
    /// configures, others wait for it. A record that the configuration itself creates, in a
    /// replaced openlog() for example, finds the logger not yet configured, so it is usually
    /// dropped. Throws what the configuration throws; the next record then tries again.
    static void Init();

    /// Writes the wall clock as seconds in a field of 12, ".", and microseconds left-adjusted in a
    /// field of 8. The stream stays left-adjusted, decimal and filled with blanks.
    static void AppendTimestamp(VyLog& record);

  private:
    std::string text_;
    std::unique_ptr<std::ostream> stream_;  ///< null until stream() is called
    Level level_;
    const char* file_;
    int line_;
    uint64_t category_;
};

}  // namespace com_qel
