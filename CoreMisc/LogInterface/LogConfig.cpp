#include "CoreMisc/LogInterface/LogConfig.h"

#include <cstdlib>
#include <cstring>

namespace com_qel::Korvel::LogInterface {

namespace {

constexpr uint32_t levelCount = SeverityFatal + 1;

// In the order of LogType.
constexpr const char* typeTexts[] = {"text_file", "rolling_text_file", "console", "inmemory",
                                     "syslog"};
constexpr uint32_t typeCount = sizeof(typeTexts) / sizeof(typeTexts[0]);

const char* levelText(uint32_t level) {
    return LevelName(static_cast<Severity>(level));
}

const char* typeText(uint32_t type) {
    return typeTexts[type];
}

const char* environmentText(const char* variable) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the contract excludes a concurrent setenv()
    return std::getenv(variable);
}

// The choice, below `count`, that `variable` names by its text or else by its number. The number is
// judged at the full width of long: a value beyond 32 bits is out of range, not small.
uint32_t choiceFromEnvironment(const char* variable, uint32_t count,
                               const char* (*textOf)(uint32_t), uint32_t defaultChoice) {
    const char* text = environmentText(variable);
    if (text == nullptr) {
        return defaultChoice;
    }
    for (uint32_t choice = 0; choice < count; ++choice) {
        if (std::strcmp(text, textOf(choice)) == 0) {
            return choice;
        }
    }
    const auto number = static_cast<unsigned long>(std::strtol(text, nullptr, 10));
    return number < count ? static_cast<uint32_t>(number) : defaultChoice;
}

std::string textFromEnvironment(const char* variable, const std::string& defaultText) {
    const char* text = environmentText(variable);
    return text != nullptr ? text : defaultText;
}

uint32_t sizeFromEnvironment(const char* variable, uint32_t defaultSizeBytes) {
    const char* text = environmentText(variable);
    return text != nullptr ? static_cast<uint32_t>(std::strtoul(text, nullptr, 10))
                           : defaultSizeBytes;
}

}  // namespace

LogConfig::LogConfig(uint32_t defaultLevel, uint32_t defaultType, const std::string& defaultRoot,
                     const std::string& defaultName, uint32_t defaultSizeBytes)
    : level(static_cast<Severity>(
          choiceFromEnvironment("VRAX_LOG_LEVEL", levelCount, levelText, defaultLevel))),
      type(static_cast<LogType>(
          choiceFromEnvironment("VRAX_LOG_TYPE", typeCount, typeText, defaultType))),
      root(textFromEnvironment("VRAX_LOG_ROOT", defaultRoot)),
      name(textFromEnvironment("VRAX_LOG_NAME", defaultName)),
      size(sizeFromEnvironment("VRAX_LOG_SIZE", defaultSizeBytes)) {}

}  // namespace com_qel::Korvel::LogInterface
