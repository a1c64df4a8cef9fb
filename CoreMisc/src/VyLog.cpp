#include "CoreMisc/src/VyLog.h"

#include <atomic>
#include <charconv>
#include <cstring>
#include <exception>
#include <limits>
#include <mutex>

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

// Room for the header and most messages, allocated once.
constexpr std::size_t usualTextSize = 240;

void appendRightAligned(std::string& text, std::string_view piece, std::size_t width,
                        char fill = ' ') {
    if (piece.size() < width) {
        text.append(width - piece.size(), fill);
    }
    text.append(piece);
}

// The digits of an integer, in characters of this object.
class Digits {
  public:
    // Leaves the characters after the digits uninitialised: none is ever read.
    template <class Integer>
    // cppcheck-suppress uninitMemberVar ; see above
    explicit Digits(Integer number, int base = 10)
        : end_(std::to_chars(std::begin(characters_), std::end(characters_), number, base).ptr) {}

    operator std::string_view() const {
        return {characters_, static_cast<std::size_t>(end_ - characters_)};
    }

  private:
    char characters_[std::numeric_limits<uint64_t>::digits10 + 2];
    const char* end_;
};

void appendPlace(std::string& text, const char* file, int line) {
    if (file != nullptr) {
        appendRightAligned(text, baseName(file), 35);
    } else {
        text += "UNKNOWN";
    }
    text += '|';
    appendRightAligned(text, Digits(line), 5);
    text += '|';
}

void appendCategory(std::string& text, uint64_t category) {
    text += "TRACE:0x";
    appendRightAligned(text, Digits(category, 16), 16, '0');
    text += '|';
}

std::atomic<bool> initialised{false};
std::mutex configurationMutex;
// Whether this thread is configuring: a record that it creates meanwhile must not wait for itself.
thread_local bool isConfiguring = false;

// One thread configures, the others wait. After a configuration that throws, the next record tries
// again. Not std::call_once, which deadlocks when the configuration itself creates a record.
void configureOnce() {
    if (isConfiguring) {
        return;
    }
    const std::lock_guard<std::mutex> guard(configurationMutex);
    if (initialised.load(std::memory_order_relaxed)) {
        return;
    }
    struct Configuring {
        Configuring() { isConfiguring = true; }
        ~Configuring() { isConfiguring = false; }
    } const configuring;
    LogInterface::Logger::Instance().ConfigureFromEnvironment("dummy", LogInterface::FormatLine);
    initialised.store(true, std::memory_order_release);
}

}  // namespace

VyLog::VyLog(Level level, const char* file, int line, uint64_t category)
    : level_(level), file_(file), line_(line), category_(category) {
    Init();
    try {
        text_.reserve(usualTextSize);
        appendRightAligned(text_, traitsOf(level_).name, 7);
        text_ += '|';
        if (showFileLine) {
            appendPlace(text_, file_, line_);
        }
        if (category_ != 0) {
            appendCategory(text_, category_);
        }
    } catch (const std::exception&) {
        return;
    }
}

VyLog::~VyLog() {
    const LevelTraits traits = traitsOf(level_);
    LogInterface::Logger& logger = LogInterface::Logger::Instance();
    if (static_cast<int32_t>(logger.Threshold()) > static_cast<int32_t>(traits.severity)) {
        return;
    }
    text_.insert(0, traits.prefix).append(traits.suffix);
    logger.Dispatch(traits.severity, text_.c_str());
}

VyLog& VyLog::append(std::string_view text) noexcept {
    try {
        text_ += text;
    } catch (const std::exception&) {
        return *this;
    }
    return *this;
}

VyLog& VyLog::append(int64_t number) noexcept {
    return append(Digits(number));
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
    if (!initialised.load(std::memory_order_acquire)) {
        configureOnce();
    }
}

}  // namespace com_qel
