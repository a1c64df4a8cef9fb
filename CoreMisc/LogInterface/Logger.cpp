#include "CoreMisc/LogInterface/Logger.h"

#include <syslog.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>

#include "CoreMisc/LogInterface/LogConfig.h"
#include "CoreMisc/LogInterface/RollingTextFileBackEnd.h"
#include "CoreMisc/LogInterface/Sink.h"
#include "CoreMisc/LogInterface/StdOutBackEnd.h"
#include "CoreMisc/LogInterface/SyslogSink.h"
#include "CoreMisc/LogInterface/TextFileBackEnd.h"

namespace com_qel::Korvel::LogInterface {

namespace {

constexpr uint32_t defaultRollingLimitBytes = 5000;
constexpr const char* consoleDirectory = "*";

// As the standard's paths are joined: an absolute `name` stands alone.
std::string joined(const std::string& directory, const std::string& name) {
    const bool isAbsolute = !name.empty() && name.front() == '/';
    if (isAbsolute || directory.empty()) {
        return name;
    }
    return directory.back() == '/' ? directory + name : directory + '/' + name;
}

// What asctime_r() needs.
constexpr std::size_t stampSize = 26;

// The local time in asctime()'s form, its newline included; empty for a year beyond 9999.
// What localtime() and asctime() return belongs to the program, so neither is called.
void showTime(std::time_t time, char (&stamp)[stampSize]) {
    std::tm local = {};
    tzset();  // localtime_r() need not notice another zone
    if (localtime_r(&time, &local) == nullptr || asctime_r(&local, stamp) == nullptr) {
        stamp[0] = '\0';
    }
}

// Adds a sink with a back-end of its own. Both live until the process ends, so there are no owners
// to free them. Nothing is left behind when memory runs out: the list grows first, and the sink
// exists before the back-end is given up.
template <class BackEnd, class... Arguments>
void addFormattingSink(std::vector<ISink*>& sinks, Formatter formatter,
                       const Arguments&... arguments) {
    sinks.reserve(sinks.size() + 1);
    auto backEnd = std::make_unique<BackEnd>(arguments...);
    sinks.push_back(new Sink(formatter, backEnd.get()));
    static_cast<void>(backEnd.release());
}

// The stamp of the last line serves all lines of the same second: making one costs more than the
// rest of the line, a system call included when the time zone is the system's. Another zone in the
// environment makes another stamp at once.
class StampCache {
  public:
    const char* now() {
        const std::time_t time = std::time(nullptr);
        // NOLINTNEXTLINE(concurrency-mt-unsafe): as with tzset(), which reads it too
        const char* zone = std::getenv("TZ");
        const bool isSameZone = zone != nullptr ? hasZone_ && zone_ == zone : !hasZone_;
        if (time != time_ || !isSameZone) {
            showTime(time, stamp_);
            zone_ = zone != nullptr ? zone : "";
            hasZone_ = zone != nullptr;
            time_ = time;
        }
        return stamp_;
    }

  private:
    std::optional<std::time_t> time_;
    bool hasZone_ = false;
    std::string zone_;
    char stamp_[stampSize] = "";
};

}  // namespace

const char* LevelName(Severity severity) {
    static constexpr const char* names[] = {"trace", "debug", "info", "warning", "error", "fatal"};
    return severity <= SeverityFatal ? names[severity] : "unknown";
}

const char* FormatLine(const char* levelName, const char* text) {
    // Never destroyed: a record may come from the destructor of any static.
    static std::string& line = *new std::string;
    static StampCache& stamp = *new StampCache;
    line.assign("[").append(stamp.now());
    line.append("] <").append(levelName).append(">: ").append(text);
    return line.c_str();
}

Logger& Logger::Instance() {
    // Never destroyed: a record may come from the destructor of any static.
    static Logger& logger = *new Logger;
    return logger;
}

void Logger::Dispatch(Severity severity, const char* text) {
    for (ISink* sink : sinks_) {
        sink->Write(severity, text);
    }
}

void Logger::ConfigureFromEnvironment(const std::string& name, Formatter formatter) {
    const LogConfig config(SeverityFatal, LogTypeConsole, "./", name, defaultRollingLimitBytes);
    const std::string path = joined(config.root, config.name);
    switch (config.type) {
        case LogTypeTextFile:
            addFormattingSink<TextFileBackEnd>(sinks_, formatter, path);
            break;
        case LogTypeRollingTextFile:
            addFormattingSink<RollingTextFileBackEnd>(sinks_, formatter, path, config.size);
            break;
        case LogTypeConsole:
            addFormattingSink<StdOutBackEnd>(sinks_, formatter);
            break;
        case LogTypeSyslog:
            sinks_.reserve(sinks_.size() + 1);
            openlog(nullptr, LOG_PID | LOG_CONS | LOG_NDELAY, LOG_USER);
            sinks_.push_back(new SyslogSink);
            break;
        case LogTypeInMemory:
        default:
            break;
    }
    threshold_ = config.level;
}

void Logger::ConfigureFile(const std::string& name, const std::string& directory, int level,
                           Formatter formatter) {
    if (directory == consoleDirectory) {
        addFormattingSink<StdOutBackEnd>(sinks_, formatter);
    } else {
        const std::string path = joined(directory, name + ".log");
        const std::filesystem::path parent = std::filesystem::path(path).parent_path();
        if (!exists(status(parent))) {
            throw std::runtime_error("Cannot create log file: Path is invalid " + parent.string());
        }
        addFormattingSink<TextFileBackEnd>(sinks_, formatter, path);
    }
    const bool isSeverity = level >= 0 && level <= static_cast<int>(SeverityFatal);
    threshold_ = isSeverity ? static_cast<Severity>(level) : SeverityError;
}

}  // namespace com_qel::Korvel::LogInterface
