#include "tests/CoreMisc/LogTestSupport.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string_view>

#include "CoreMisc/src/VyLog.h"
#include "tests/support/LogSettings.h"

namespace vantric_test {

namespace {

namespace LogInterface = com_qel::Korvel::LogInterface;
using com_qel::VyLog;

const RoleRegistration writeErrors(writeErrorsRole, [](const Arguments& messages) {
    for (const std::string& message : messages) {
        VyLog(VyLog::Error, "folder/Source", 250, 0).stream() << message;
    }
    return 0;
});

std::vector<std::string>& capturedRecords() {
    static std::vector<std::string> records;
    return records;
}

const char* capture(const char* levelName, const char* text) {
    capturedRecords().push_back(std::string(levelName) + ": " + text);
    return "";
}

// The only sink that ever formats with capture(); its file has no name any more.
void addCapturingSink() {
    const LogEnvironment environment(LogSettings{{"VRAX_LOG_TYPE", "inmemory"}});
    VyLog::Init();
    const TemporaryFolder folder;
    LogInterface::Logger::Instance().ConfigureFile("captured", folder.path(), 0, capture);
}

void setThreshold(LogInterface::Severity threshold) {
    const LogEnvironment environment(
        LogSettings{{"VRAX_LOG_TYPE", "inmemory"}, {"VRAX_LOG_LEVEL", std::to_string(threshold)}});
    LogInterface::Logger::Instance().ConfigureFromEnvironment("none", LogInterface::FormatLine);
}

constexpr std::size_t stampLength = 24;
constexpr std::string_view endOfStamp = "\n] <";

// Whether `text` is a time in the form "Thu Jan  1 00:00:00 1970".
bool isStamp(const std::string& text) {
    constexpr const char* form = "%a %b %e %H:%M:%S %Y";
    std::tm time = {};
    const char* end = strptime(text.c_str(), form, &time);
    char canonical[64] = "";
    std::strftime(canonical, sizeof(canonical), form, &time);
    return end == text.c_str() + text.size() && text == canonical;
}

}  // namespace

std::string readFile(const std::filesystem::path& path) {
    const std::ifstream file(path);
    if (!file) {
        throw std::runtime_error("there is no file " + path.string());
    }
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

void writeFile(const std::filesystem::path& path, const std::string& content) {
    std::ofstream file(path);
    file << content << std::flush;
    if (!file) {
        throw std::runtime_error("cannot write " + path.string());
    }
}

std::vector<std::string> namesIn(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
}

LogEnvironment::LogEnvironment(const LogSettings& settings) {
    forgetLogSettings();
    for (const auto& [variable, value] : settings) {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): tests change it while they have one thread
        setenv(variable.c_str(), value.c_str(), 1);
    }
}

LogEnvironment::~LogEnvironment() {
    forgetLogSettings();
}

Result runRoleWith(const LogSettings& settings, const std::string& role,
                   const std::vector<std::string>& arguments) {
    const LogEnvironment environment(settings);
    return run(roleCommand(role, arguments));
}

std::string errorRecord(const std::string& message) {
    return "error:   ERROR|" + std::string(29, ' ') + "Source|  250|" + message;
}

std::vector<std::string> recordsIn(const std::string& output) {
    std::vector<std::string> records;
    std::size_t position = 0;
    while (position < output.size()) {
        const std::size_t nameBegin = position + std::strlen("[") + stampLength + endOfStamp.size();
        const std::size_t nameEnd = output.find(">: ", nameBegin);
        const std::size_t lineEnd = output.find('\n', nameBegin);
        if (output[position] != '[' || !isStamp(output.substr(position + 1, stampLength)) ||
            output.compare(nameBegin - endOfStamp.size(), endOfStamp.size(), endOfStamp) != 0 ||
            lineEnd == std::string::npos || nameEnd > lineEnd) {
            throw std::runtime_error("no log line: " + output.substr(position));
        }
        const std::string levelName = output.substr(nameBegin, nameEnd - nameBegin);
        const std::size_t textBegin = nameEnd + std::strlen(">: ");
        records.push_back(levelName + ": " + output.substr(textBegin, lineEnd - textBegin));
        position = lineEnd + 1;
    }
    return records;
}

RecordCapture::RecordCapture(LogInterface::Severity threshold) {
    static const bool added = (addCapturingSink(), true);
    static_cast<void>(added);
    setThreshold(threshold);
    capturedRecords().clear();
}

RecordCapture::~RecordCapture() {
    VyLog::SetTraceMask(0);
    VyLog::SetShowFileLine(true);
    VyLog::SetColors(false);
    setThreshold(LogInterface::SeverityFatal);
}

const std::vector<std::string>& RecordCapture::records() const {
    return capturedRecords();
}

}  // namespace vantric_test
