#include "tests/Vantric/LogTranscript.h"

namespace vantric_test {

namespace {

constexpr const char* maskedStamp = "[Day Mon dd hh:mm:ss yyyy\n] <";
constexpr const char* maskedLine = "|#####|";
constexpr std::size_t stampLength = 24;
constexpr std::size_t lineWidth = 5;
constexpr std::size_t fileWidth = 35;

// The length of what masked() replaces where `log` has it at `position`; else 0.
std::size_t stampAt(const std::string& log, std::size_t position) {
    const std::string bracket = "\n] <";
    const std::size_t end = position + 1 + stampLength;
    const bool isStamp = log[position] == '[' && log.compare(end, bracket.size(), bracket) == 0 &&
                         log.find('\n', position) == end;
    return isStamp ? 1 + stampLength + bracket.size() : 0;
}

std::size_t lineNumberAt(const std::string& log, std::size_t position) {
    const std::string number = log.substr(position + 1, lineWidth);
    const std::size_t blanks = number.find_first_not_of(' ');
    const bool isNumber = log[position] == '|' && blanks != std::string::npos &&
                          number.find_first_not_of("0123456789", blanks) == std::string::npos &&
                          log.compare(position + 1 + lineWidth, 1, "|") == 0;
    return isNumber ? 1 + lineWidth + 1 : 0;
}

std::string record(const char* severity, const char* level, const std::string& file,
                   const std::string& message) {
    const std::string blanks(fileWidth - file.size(), ' ');
    return std::string(maskedStamp) + severity + ">: " + level + '|' + blanks + file + maskedLine +
           message + '\n';
}

}  // namespace

std::map<std::string, std::string> loggingFrom(const std::string& level) {
    return {{"VRAX_LOG_LEVEL", level}, {"VRAX_LOG_TYPE", "console"}};
}

std::string masked(const std::string& log) {
    std::string result;
    std::size_t position = 0;
    while (position < log.size()) {
        if (const std::size_t length = stampAt(log, position); length != 0) {
            result += maskedStamp;
            position += length;
        } else if (const std::size_t width = lineNumberAt(log, position); width != 0) {
            result += maskedLine;
            position += width;
        } else {
            result += log[position++];
        }
    }
    return result;
}

std::string errorRecord(const std::string& file, const std::string& message) {
    return record("error", "  ERROR", file, message);
}

std::string warningRecord(const std::string& file, const std::string& message) {
    return record("warning", "WARNING", file, message);
}

}  // namespace vantric_test
