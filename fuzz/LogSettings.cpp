// Log settings from arbitrary environment texts: what is read is what the texts say under the rules
// of each variable, and the logger takes the threshold over.
//
// Input: default level and type (words), default size (word), default root and name (runs), which
// variables are set (bits, in the order level, type, root, name, size), then their texts (runs).
#include <limits>
#include <optional>
#include <string>

#include "CoreMisc/LogInterface/LogConfig.h"
#include "fuzz/Input.h"
#include "fuzz/LogVariables.h"
#include "fuzz/Target.h"

namespace {

using com_qel::Korvel::LogInterface::FormatLine;
using com_qel::Korvel::LogInterface::LogConfig;
using com_qel::Korvel::LogInterface::Logger;
using vantric_fuzz::Input;
using vantric_fuzz::LogVariables;
using vantric_fuzz::require;

enum Variable : std::size_t { Level, Type, Root, Name, Size };

// A text's leading number: blanks, a sign, digits. The magnitude stops at its largest value.
struct Number {
    bool isNegative = false;
    bool isHuge = false;  // beyond the magnitude's range
    unsigned long magnitude = 0;
};

Number leadingNumber(const std::string& text) {
    Number number;
    std::size_t position = text.find_first_not_of(" \t\n\v\f\r");
    if (position == std::string::npos) {
        return number;
    }
    if (text[position] == '-' || text[position] == '+') {
        number.isNegative = text[position++] == '-';
    }
    constexpr unsigned long most = std::numeric_limits<unsigned long>::max();
    for (; position < text.size() && text[position] >= '0' && text[position] <= '9'; ++position) {
        const auto digit = static_cast<unsigned long>(text[position] - '0');
        number.isHuge = number.isHuge || number.magnitude > (most - digit) / 10;
        number.magnitude = number.isHuge ? most : number.magnitude * 10 + digit;
    }
    return number;
}

uint32_t expectedChoice(const std::optional<std::string>& text,
                        const std::vector<std::string>& names, uint32_t fallback) {
    if (!text) {
        return fallback;
    }
    for (std::size_t index = 0; index < names.size(); ++index) {
        if (*text == names[index]) {
            return static_cast<uint32_t>(index);
        }
    }
    const Number number = leadingNumber(*text);
    const bool isNegative = number.isNegative && number.magnitude != 0;
    return isNegative || number.magnitude >= names.size() ? fallback
                                                          : static_cast<uint32_t>(number.magnitude);
}

uint32_t expectedSize(const std::optional<std::string>& text, uint32_t fallback) {
    if (!text) {
        return fallback;
    }
    const Number number = leadingNumber(*text);
    const bool isNegated = number.isNegative && !number.isHuge;
    return static_cast<uint32_t>(isNegated ? 0 - number.magnitude : number.magnitude);
}

void requireSettings(const LogVariables::Texts& texts, Input defaults) {
    const uint32_t level = defaults.word();
    const uint32_t type = defaults.word();
    const uint32_t size = defaults.word();
    const std::string root = defaults.text();
    const std::string name = defaults.text();
    const LogConfig config(level, type, root, name, size);
    require(config.level == expectedChoice(texts[Level],
                                           {"trace", "debug", "info", "warning", "error", "fatal"},
                                           level),
            "the level is what the text says");
    require(config.type ==
                expectedChoice(texts[Type],
                               {"text_file", "rolling_text_file", "console", "inmemory", "syslog"},
                               type),
            "the type is what the text says");
    require(config.root == texts[Root].value_or(root), "the root is the text");
    require(config.name == texts[Name].value_or(name), "the name is the text");
    require(config.size == expectedSize(texts[Size], size), "the size is what the text says");
}

// Of the type that opens nothing and adds nothing, whatever root and name are.
void requireThreshold(LogVariables::Texts texts) {
    texts[Type] = "inmemory";
    const LogVariables variables(texts);
    Logger& logger = Logger::Instance();
    logger.ConfigureFromEnvironment("name", FormatLine);
    constexpr uint32_t fatal = 5;
    require(logger.Threshold() ==
                expectedChoice(texts[Level],
                               {"trace", "debug", "info", "warning", "error", "fatal"}, fatal),
            "the logger's threshold is the level");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Input input(data, size);
    const Input defaults = input;
    for (int word = 0; word < 3; ++word) {
        input.word();
    }
    input.text();
    input.text();
    const unsigned int set = input.byte();
    LogVariables::Texts texts;
    for (std::size_t index = 0; index < texts.size(); ++index) {
        if ((set >> index & 1U) != 0) {
            texts[index] = input.textWithoutNul();
        }
    }
    {
        const LogVariables variables(texts);
        requireSettings(texts, defaults);
    }
    requireThreshold(texts);
    return 0;
}
