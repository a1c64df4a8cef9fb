/// \class com_qel::Korvel::LogInterface::Logger
/// The process-wide logger: a threshold and an ordered list of sinks.
///
/// Ownership: the one instance, its sinks and their back-ends are created on demand and live until
/// the process ends; nothing is ever freed, so a record may be written from any static's
/// constructor or destructor. Thread-safety: Instance() may be called from any thread. The two
/// Configure functions change the sink list and the threshold without a lock: call them before
/// other threads log. Dispatch() and Threshold() may run on any thread once configuration is over;
/// the first VyLog record waits for its own configuration. Process-safety: the instance belongs to
/// one process; two processes that log to one file overwrite each other. A child that a process
/// with threads has forked must not log before it executes a program: another thread may have held
/// a sink's mutex.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "CoreMisc/Export.h"

namespace com_qel::Korvel::LogInterface {

class ISink;

/// The logger's scale. Values above SeverityFatal may arrive through casts; LevelName() names them
/// "unknown".
enum Severity : uint32_t {
    SeverityTrace = 0,    ///< "trace"
    SeverityDebug = 1,    ///< "debug"; a threshold, no VyLog record has it
    SeverityInfo = 2,     ///< "info"
    SeverityWarning = 3,  ///< "warning"
    SeverityError = 4,    ///< "error"
    SeverityFatal = 5,    ///< "fatal"; a threshold that no VyLog record reaches
};

/// The lower-case name of `severity`; a string with static lifetime. VRAX_LOG_LEVEL takes the same
/// names.
VANTRIC_EXPORT const char* LevelName(Severity severity);

/// Turns a level name and a record text into a finished line without its closing newline. Both
/// arguments are NUL-terminated; the result stays valid until the formatter's next call.
using Formatter = const char* (*)(const char* levelName, const char* text);

/// The formatter used throughout: "[" + local time + "] <" + level name + ">: " + text. The time
/// comes from asctime() and keeps its newline, so a line is printed as two. It is made once a
/// second: a changed TZ shows in the next line, a replaced /etc/localtime within a second. What the
/// program got from localtime() or asctime() stays as it is. Not thread-safe: the line is built in
/// one process-wide string. Sinks call it under a mutex that they share; do not call it while
/// another thread may log. Setting TZ with setenv() at that time is not safe either. Throws
/// std::length_error or std::bad_alloc when the line cannot be built.
VANTRIC_EXPORT const char* FormatLine(const char* levelName, const char* text);

class VANTRIC_EXPORT Logger {
  public:
    /// The one logger, created on first use with threshold SeverityFatal and no sinks. The first
    /// call throws std::bad_alloc when memory runs out; the next one then tries again.
    static Logger& Instance();

    Logger(const Logger&) = delete;
    Logger& operator=(const Logger&) = delete;

    /// Records below this severity are not to be dispatched. The caller compares: see Dispatch().
    Severity Threshold() const { return threshold_; }

    /// Hands `text`, NUL-terminated, to every sink in the order in which they were added. Filters
    /// nothing. What a sink throws is passed on, and the sinks after it get nothing.
    void Dispatch(Severity severity, const char* text);

    /// Adds the sink that the environment asks for, as LogConfig describes, and sets the threshold.
    /// The defaults are SeverityFatal, the console, "./", `name` and 5000 bytes. The file's path is
    /// the directory joined with the name; an absolute name stands alone. Never reports an unusable
    /// setting or a file that cannot be opened; such lines are lost. Sinks are added, never
    /// removed: a second call doubles every line. Throws std::bad_alloc when memory runs out; the
    /// sinks and the threshold are unchanged then.
    void ConfigureFromEnvironment(const std::string& name, Formatter formatter);

    /// Adds a text file sink on `directory`/`name`.log, truncating an older file, or a console sink
    /// when `directory` is "*", and sets the threshold to `level` (SeverityError when `level` is
    /// not a severity). Call VyLog::Init() first: otherwise the first record still configures from
    /// the environment, which adds a sink and replaces the threshold. Throws std::runtime_error
    /// when the parent directory does not exist, std::filesystem::filesystem_error when it cannot
    /// be examined, and std::bad_alloc when memory runs out; the sinks and the threshold are
    /// unchanged then.
    void ConfigureFile(const std::string& name, const std::string& directory, int level,
                       Formatter formatter);

  private:
    Logger() = default;

    Severity threshold_ = SeverityFatal;
    std::vector<ISink*> sinks_;
};

}  // namespace com_qel::Korvel::LogInterface
