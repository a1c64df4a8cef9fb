#include "tests/support/LogTranscript.h"

#include <regex>

namespace vantric_test {

namespace {

constexpr const char* maskedStamp = "[Day Mon dd hh:mm:ss yyyy\n] <";

std::string record(const std::string& level, const std::string& file, const std::string& line,
                   const std::string& message) {
    constexpr std::size_t fileWidth = 35;
    const std::string blanks(fileWidth - file.size(), ' ');
    return maskedStamp + level + '|' + blanks + file + '|' + line + '|' + message + '\n';
}

}  // namespace

std::map<std::string, std::string> loggingFrom(const std::string& level) {
    return {{"VRAX_LOG_LEVEL", level}, {"VRAX_LOG_TYPE", "console"}};
}

std::string withoutStamps(const std::string& log) {
    static const std::regex stamp("\\[[^\n]{24}\n\\] <");
    return std::regex_replace(log, stamp, maskedStamp);
}

std::string masked(const std::string& log) {
    static const std::regex lineNumber("\\|(?= *\\d+\\|)[ \\d]{5}\\|");
    return std::regex_replace(withoutStamps(log), lineNumber, "|#####|");
}

std::string errorRecord(const std::string& file, const std::string& message,
                        const std::string& line) {
    return record("error>:   ERROR", file, line, message);
}

std::string warningRecord(const std::string& file, const std::string& message) {
    return record("warning>: WARNING", file, "#####", message);
}

}  // namespace vantric_test
