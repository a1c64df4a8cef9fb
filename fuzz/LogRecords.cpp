// Log records of arbitrary texts, files, lines, levels and categories: a record that passes the
// threshold reaches the sink once, with header, colours and text as they have to be.
//
// Input: threshold (byte, 0 to 5), switches (bits: 1 file and line shown, 2 colours), level (word,
// or the byte's low bits when the next byte is even), line (word), category (long word), whether
// there is a file (byte), file (run), number (word), message (the rest).
#include <cstdio>
#include <optional>
#include <string>

#include "CoreMisc/LogInterface/Logger.h"
#include "CoreMisc/src/VyLog.h"
#include "fuzz/Input.h"
#include "fuzz/LogVariables.h"
#include "fuzz/Target.h"

namespace {

using com_qel::VyLog;
using com_qel::Korvel::LogInterface::FormatLine;
using com_qel::Korvel::LogInterface::LevelName;
using com_qel::Korvel::LogInterface::Logger;
using com_qel::Korvel::LogInterface::Severity;
using vantric_fuzz::Input;
using vantric_fuzz::LogVariables;
using vantric_fuzz::require;

// What reached the sink.
struct Written {
    int count = 0;
    std::string levelName;
    std::string text;
    std::string line;
};

Written& written() {
    static Written& last = *new Written;
    return last;
}

const char* keepAndFormat(const char* levelName, const char* text) {
    const char* line = FormatLine(levelName, text);
    written() = {written().count + 1, levelName, text, line};
    return line;
}

// By way of the type that adds no sink.
LogVariables silence(uint32_t threshold) {
    return LogVariables(
        {std::to_string(threshold), "inmemory", std::nullopt, std::nullopt, std::nullopt});
}

void setThreshold(uint32_t threshold) {
    const LogVariables variables = silence(threshold);
    Logger::Instance().ConfigureFromEnvironment("none", keepAndFormat);
}

// One sink for all inputs, whose lines go nowhere.
void addSink() {
    {
        const LogVariables variables = silence(0);
        VyLog::Init();
    }
    const LogVariables variables({"0", "text_file", "/dev", "null", std::nullopt});
    Logger::Instance().ConfigureFromEnvironment("null", keepAndFormat);
}

std::string rightAligned(const std::string& text, std::size_t width) {
    return text.size() < width ? std::string(width - text.size(), ' ') + text : text;
}

struct Record {
    uint32_t level = 0;
    int32_t line = 0;
    uint64_t category = 0;
    std::optional<std::string> file;
    uint32_t number = 0;
    std::string message;
    bool isPlaceShown = true;
    bool isColoured = false;
};

struct LevelRules {
    const char* name;
    uint32_t severity;
    const char* colour;
};

LevelRules rulesOf(uint32_t level) {
    constexpr LevelRules rules[] = {{"ERROR", 4, "\x1b[22;31m"},
                                    {"WARNING", 3, "\x1b[22;33m"},
                                    {"INFO", 2, ""},
                                    {"TRACE", 0, "\x1b[22;32m"},
                                    {"UNKNOWN", 0, "\x1b[22;32m"}};
    return rules[level < 4 ? level : 4];
}

std::string categoryText(uint64_t category) {
    char text[17];
    std::snprintf(text, sizeof(text), "%016llx", static_cast<unsigned long long>(category));
    return std::string("TRACE:0x") + text + "|";
}

std::string expectedText(const Record& record) {
    const LevelRules rules = rulesOf(record.level);
    std::string text = rightAligned(rules.name, 7) + "|";
    if (record.isPlaceShown) {
        const std::string file = record.file.value_or("");
        const std::string base = file.substr(file.rfind('/') + 1);
        text += (record.file ? rightAligned(base, 35) : "UNKNOWN") + "|";
        text += rightAligned(std::to_string(record.line), 5) + "|";
    }
    text += record.category != 0 ? categoryText(record.category) : "";
    text += record.message + std::to_string(record.number);
    if (record.isColoured && *rules.colour != '\0') {
        text = rules.colour + text + "\x1b[01;37m";
    }
    return text.substr(0, text.find('\0'));
}

constexpr const char* severityNames[] = {"trace", "debug", "info", "warning", "error", "fatal"};

void requireLine(const std::string& line, const std::string& levelName, const std::string& text) {
    constexpr std::size_t stampLength = 24;
    const std::string rest = "\n] <" + levelName + ">: " + text;
    require(line.size() == 1 + stampLength + rest.size() && line[0] == '[' &&
                line.compare(1 + stampLength, std::string::npos, rest) == 0 &&
                line.find('\n') == 1 + stampLength,
            "a line is time stamp, level and text");
}

void requireRecord(const Record& record, uint32_t threshold) {
    written() = Written();
    VyLog::SetShowFileLine(record.isPlaceShown);
    VyLog::SetColors(record.isColoured);
    VyLog(static_cast<VyLog::Level>(record.level), record.file ? record.file->c_str() : nullptr,
          record.line, record.category)
            .stream()
        << record.message << record.number;
    const uint32_t severity = rulesOf(record.level).severity;
    if (threshold > severity) {
        require(written().count == 0, "a record below the threshold is dropped");
        return;
    }
    require(written().count == 1, "a record is written once");
    const Written& result = written();
    require(result.levelName == severityNames[severity], "the level decides the severity");
    require(result.text == expectedText(record), "a record's text has its header and its message");
    requireLine(result.line, result.levelName, result.text);
}

// Dispatching filters nothing and names any severity.
void requireDispatch(uint32_t severity, const std::string& text) {
    written() = Written();
    Logger::Instance().Dispatch(static_cast<Severity>(severity), text.c_str());
    const std::string name = severity < 6 ? severityNames[severity] : "unknown";
    const std::string arriving = text.substr(0, text.find('\0'));
    require(LevelName(static_cast<Severity>(severity)) == name, "a severity has its name");
    require(written().count == 1 && written().text == arriving,
            "a dispatched text arrives as it is");
    requireLine(written().line, name, arriving);
}

uint32_t readLevel(Input& input) {
    const uint32_t level = input.word();
    return input.byte() % 2 == 0 ? level % 5 : level;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    static const bool isReady = (addSink(), true);
    static_cast<void>(isReady);
    Input input(data, size);
    const uint32_t threshold = input.byte() % 6;
    const unsigned int switches = input.byte();
    Record record;
    record.isPlaceShown = (switches & 1U) != 0;
    record.isColoured = (switches & 2U) != 0;
    record.level = readLevel(input);
    record.line = static_cast<int32_t>(input.word());
    record.category = input.longWord();
    const bool hasFile = input.byte() % 4 != 0;
    const std::string file = input.textWithoutNul();
    record.file = hasFile ? std::optional(file) : std::nullopt;
    record.number = input.word();
    const auto message = input.bytes(size);
    record.message.assign(message.begin(), message.end());
    setThreshold(threshold);
    requireRecord(record, threshold);
    requireDispatch(record.level, record.message);
    return 0;
}
