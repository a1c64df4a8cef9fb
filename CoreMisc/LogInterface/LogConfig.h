// The five log settings: what the environment asks for, over defaults that the caller supplies.
//
// The values come from whoever started the process. None is ever rejected or reported: a text that
// names no known value falls back as described at each variable.
#pragma once

#include <cstdint>
#include <string>

#include "CoreMisc/LogInterface/Logger.h"

namespace com_qel::Korvel::LogInterface {

enum LogType : uint32_t {
    LogTypeTextFile = 0,
    LogTypeRollingTextFile = 1,
    LogTypeConsole = 2,
    LogTypeInMemory = 3,
    LogTypeSyslog = 4,
};

struct LogConfig {
    // Reads the environment; a variable counts as set even when it is empty.
    //   VRAX_LOG_LEVEL  a severity name, or a number 0 to 5; a text that is no number counts as 0
    //   VRAX_LOG_TYPE   text_file, rolling_text_file, console, inmemory, syslog, or a number 0 to
    //                   4; a text that is no number counts as 0
    //   VRAX_LOG_ROOT   the log directory, as it stands
    //   VRAX_LOG_NAME   the log file's name, as it stands
    //   VRAX_LOG_SIZE   the rolling limit in bytes, truncated to 32 bits; no number counts as 0
    // A number outside its range leaves the default. Not safe against a concurrent setenv().
    LogConfig(uint32_t defaultLevel, uint32_t defaultType, const std::string& defaultRoot,
              const std::string& defaultName, uint32_t defaultSizeBytes);

    Severity level;
    LogType type;
    std::string root;
    std::string name;
    uint32_t size;  // bytes
};

}  // namespace com_qel::Korvel::LogInterface
