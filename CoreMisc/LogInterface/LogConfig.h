// The five log settings: what the environment asks for, over defaults that the caller supplies.
//
// The values come from whoever started the process. None is ever rejected or reported: for a text
// that names no known value the constructor tells what counts instead.
#pragma once

#include <cstdint>
#include <string>

#include "CoreMisc/LogInterface/Logger.h"

namespace com_qel::Korvel::LogInterface {

// Where records go.
enum LogType : uint32_t {
    LogTypeTextFile = 0,         // to a file that is emptied at the start
    LogTypeRollingTextFile = 1,  // to such a file, which is set aside when it has outgrown a limit
    LogTypeConsole = 2,          // to standard output
    LogTypeInMemory = 3,         // nowhere
    LogTypeSyslog = 4,           // to the system log
};

struct LogConfig {
    // Reads the environment; a variable counts as set even when it is empty.
    //
    // - VRAX_LOG_LEVEL: a severity's name, or a number 0 to 5
    // - VRAX_LOG_TYPE: text_file, rolling_text_file, console, inmemory, syslog, or a number 0 to 4
    // - VRAX_LOG_ROOT: the log directory, as it stands
    // - VRAX_LOG_NAME: the log file's name, as it stands
    // - VRAX_LOG_SIZE: the rolling limit in bytes, truncated to 32 bits
    //
    // Names are compared byte for byte. Numbers are decimal, with leading blanks and a sign and
    // anything behind them; a text that is no number counts as 0. A level or type outside its range
    // leaves the default. Not safe against a concurrent setenv().
    LogConfig(uint32_t defaultLevel, uint32_t defaultType, const std::string& defaultRoot,
              const std::string& defaultName, uint32_t defaultSizeBytes);

    Severity level;    // the least severity that is written
    LogType type;      // where to
    std::string root;  // directory of the log file
    std::string name;  // of the log file; nothing is added to it
    uint32_t size;     // limit of a rolling file, in bytes
};

}  // namespace com_qel::Korvel::LogInterface
