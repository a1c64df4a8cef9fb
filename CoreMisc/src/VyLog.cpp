#include "CoreMisc/src/VyLog.h"

#include <sys/time.h>

#include <cstring>
#include <iomanip>
#include <string>

#include "CoreMisc/LogInterface/Logger.h"
#include "CoreMisc/src/VyMutex.h"

namespace com_qel {

// The process-wide mutex of the core utilities: created before main() and never destroyed. External
// linkage keeps the pointer in the program, so leak checkers find the mutex reachable.
extern utils::Mutex* const processMutex;
// NOLINTNEXTLINE(cert-err58-cpp): out of memory before main(), the process can only end
utils::Mutex* const processMutex = new utils::Mutex;

namespace {

namespace LogInterface = Korvel::LogInterface;

constexpr const char* noColor = "";
constexpr const char* boldWhite = "\x1b[01;37m";
constexpr const char* red = "\x1b[22;31m";
constexpr const char* green = "\x1b[22;32m";
constexpr const char* yellow = "\x1b[22;33m";

// All of this is initialised at compile time, so records work during static initialisation.
bool initialised = false;
uint64_t traceMask = 0;
bool showFileLine = true;
const char* errorPrefix = noColor;
const char* warningPrefix = noColor;
const char* tracePrefix = noColor;
const char* commonSuffix = noColor;

struct LevelTraits {
    const char* name;
    LogInterface::Severity severity;
    const char* prefix;
    const char* suffix;
};

LevelTraits traitsOf(VyLog::Level level) {
    switch (level) {
        case VyLog::Error:
            return {"ERROR", LogInterface::SeverityError, errorPrefix, commonSuffix};
        case VyLog::Warning:
            return {"WARNING", LogInterface::SeverityWarning, warningPrefix, commonSuffix};
        case VyLog::Info:
            return {"INFO", LogInterface::SeverityInfo, noColor, noColor};
        case VyLog::Trace:
            return {"TRACE", LogInterface::SeverityTrace, tracePrefix, commonSuffix};
    }
    return {"UNKNOWN", LogInterface::SeverityTrace, tracePrefix, commonSuffix};
}

const char* baseName(const char* path) {
    const char* lastSlash = std::strrchr(path, '/');
    return lastSlash != nullptr ? lastSlash + 1 : path;
}

void configureFromEnvironment() {
    LogInterface::Logger::Instance().ConfigureFromEnvironment("dummy", LogInterface::FormatLine);
}

}  // namespace

VyLog::VyLog(Level level, const char* file, int line, uint64_t category)
    : level_(level), file_(file), line_(line), category_(category) {
    Init();
    stream_ << std::setw(7) << traitsOf(level_).name << '|';
    if (showFileLine) {
        if (file_ != nullptr) {
            stream_ << std::setw(35) << baseName(file_);
        } else {
            stream_ << "UNKNOWN";
        }
        stream_ << '|' << std::setw(5) << line_ << '|';
    }
    if (category_ != 0) {
        stream_ << "TRACE:0x" << std::hex << std::setfill('0') << std::setw(16) << category_ << '|'
                << std::dec << std::left << std::setfill(' ');
    }
}

VyLog::~VyLog() {
    const LevelTraits traits = traitsOf(level_);
    LogInterface::Logger& logger = LogInterface::Logger::Instance();
    if (static_cast<int32_t>(logger.Threshold()) > static_cast<int32_t>(traits.severity)) {
        return;
    }
    std::string text = stream_.str();
    text.insert(0, traits.prefix).append(traits.suffix);
    logger.Dispatch(traits.severity, text.c_str());
}

uint64_t VyLog::TraceMask() {
    return traceMask;
}

void VyLog::SetTraceMask(uint64_t mask) {
    traceMask = mask;
}

void VyLog::SetShowFileLine(bool show) {
    showFileLine = show;
}

void VyLog::SetColors(bool show) {
    errorPrefix = show ? red : noColor;
    warningPrefix = show ? yellow : noColor;
    tracePrefix = show ? green : noColor;
    commonSuffix = show ? boldWhite : noColor;
}

void VyLog::Init() {
    if (!initialised) {
        configureFromEnvironment();
    }
    initialised = true;
}

void VyLog::AppendTimestamp(VyLog& record) {
    timeval now = {};
    gettimeofday(&now, nullptr);
    record.stream() << std::dec << std::setfill(' ') << std::setw(12) << now.tv_sec << '.'
                    << std::left << std::setw(8) << now.tv_usec;
}

}  // namespace com_qel
