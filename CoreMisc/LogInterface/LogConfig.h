/// \class com_qel::Korvel::LogInterface::LogConfig
/// The five log settings, from the environment or from defaults that the caller supplies.
///
/// The user who starts the process writes the values. None is ever rejected or reported: the
/// constructor says what counts in place of a text that names no known value.
///
/// Ownership: a plain value; it keeps nothing of the environment.
#pragma once

#include <cstdint>
#include <string>

#include "CoreMisc/Export.h"
#include "CoreMisc/LogInterface/Logger.h"

namespace com_qel::Korvel::LogInterface {

/// Where records go.
enum LogType : uint32_t {
    LogTypeTextFile = 0,         ///< to a file that is emptied at the start
    LogTypeRollingTextFile = 1,  ///< to such a file, which is renamed when it has outgrown a limit
    LogTypeConsole = 2,          ///< to standard output
    LogTypeInMemory = 3,         ///< nowhere
    LogTypeSyslog = 4,           ///< to the system log
};

struct VANTRIC_EXPORT LogConfig {
    /// Reads the environment; a variable counts as set even when it is empty.
    ///
    /// - VRAX_LOG_LEVEL: a severity's name, or a number 0 to 5
    /// - VRAX_LOG_TYPE: text_file, rolling_text_file, console, inmemory, syslog, or a number 0 to 4
    /// - VRAX_LOG_ROOT: the log directory, unchanged
    /// - VRAX_LOG_NAME: the log file's name, unchanged
    /// - VRAX_LOG_SIZE: the rolling limit in bytes
    ///
    /// Names are compared byte for byte. Numbers are decimal, with leading blanks and a sign, and
    /// may be followed by anything; a text that is no number counts as 0. A level or type outside
    /// its range leaves the default. A size up to 4294967295 is taken as it is, and "-1" counts as
    /// that greatest one. A greater size depends on the width of long, to which it is limited
    /// first: where long has 64 bits, the lower 32 of the result remain (4294967296 becomes 0,
    /// 99999999999999999999 becomes 4294967295); where it has 32, every such size becomes the
    /// greatest one. Throws std::bad_alloc. Not safe while another thread calls setenv().
    LogConfig(uint32_t defaultLevel, uint32_t defaultType, const std::string& defaultRoot,
              const std::string& defaultName, uint32_t defaultSizeBytes);

    Severity level;    ///< the least severity that is written
    LogType type;      ///< where to
    std::string root;  ///< directory of the log file
    std::string name;  ///< of the log file; nothing is added to it
    uint32_t size;     ///< limit of a rolling file, in bytes
};

}  // namespace com_qel::Korvel::LogInterface
