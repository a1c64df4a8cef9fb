#include "CoreMisc/LogInterface/LogConfig.h"

#include <cstdlib>
#include <cstring>

namespace com_qel::Korvel::LogInterface {

namespace {

constexpr const char* levelTexts[] = {"trace", "debug", "info", "warning", "error", "fatal"};
constexpr const char* typeTexts[] = {"text_file", "rolling_text_file", "console", "inmemory",
                                     "syslog"};

const char* environmentText(const char* variable) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): logging is configured before threads are started
    return std::getenv(variable);
}

// The index of `variable`'s text in `choices`, or else its value as a number if that is an index.
// The number is judged at the full width of long: a value beyond 32 bits is out of range, not
// small.
template <std::size_t count>
uint32_t choiceFromEnvironment(const char* variable, const char* const (&choices)[count],
                               uint32_t defaultChoice) {
    const char* text = environmentText(variable);
    if (text == nullptr) {
        return defaultChoice;
    }
    for (std::size_t index = 0; index < count; ++index) {
        if (std::strcmp(text, choices[index]) == 0) {
            return static_cast<uint32_t>(index);
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
    : level(
          static_cast<Severity>(choiceFromEnvironment("VRAX_LOG_LEVEL", levelTexts, defaultLevel))),
      type(static_cast<LogType>(choiceFromEnvironment("VRAX_LOG_TYPE", typeTexts, defaultType))),
      root(textFromEnvironment("VRAX_LOG_ROOT", defaultRoot)),
      name(textFromEnvironment("VRAX_LOG_NAME", defaultName)),
      size(sizeFromEnvironment("VRAX_LOG_SIZE", defaultSizeBytes)) {}

}  // namespace com_qel::Korvel::LogInterface
