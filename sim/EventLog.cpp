#include "sim/EventLog.h"

#include <cstdio>
#include <ctime>

#include "sim/CommandTable.h"

namespace vantric_sim {

namespace {

const char* commandName(uint32_t command) {
    const CommandDescription* description = findCommand(command);
    return description == nullptr ? "Unknown" : description->name;
}

}  // namespace

std::string stampText(WallTime time) {
    using std::chrono::milliseconds;
    using std::chrono::seconds;
    const auto wholeSeconds = std::chrono::floor<seconds>(time);
    const auto rest = std::chrono::floor<milliseconds>(time - wholeSeconds);
    const std::time_t clock = std::chrono::system_clock::to_time_t(wholeSeconds);
    std::tm local = {};
    localtime_r(&clock, &local);
    char date[32];
    std::strftime(date, sizeof(date), "%Y-%m-%d %H:%M:%S", &local);
    char fraction[8];
    std::snprintf(fraction, sizeof(fraction), ".%03d", static_cast<int>(rest.count()));
    return std::string(date) + fraction;
}

std::string quoted(std::string_view bytes) {
    constexpr unsigned char firstPrintable = 0x20;
    constexpr unsigned char firstUnprintable = 0x7f;
    std::string result = "\"";
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < firstPrintable || byte >= firstUnprintable) {
            char escape[8];
            std::snprintf(escape, sizeof(escape), "\\x%02x", static_cast<unsigned int>(byte));
            result += escape;
            continue;
        }
        if (character == '"' || character == '\\') {
            result += '\\';
        }
        result += character;
    }
    return result + '"';
}

std::string frameText(uint32_t command, std::string_view payload) {
    return "frame " + std::to_string(command) + " " + commandName(command) + " " +
           std::to_string(payload.size()) + " " + quoted(payload);
}

std::string malformedFrameText(uint32_t command) {
    const CommandDescription* description = findCommand(command);
    const std::string expectation = description == nullptr ? "" : description->payload;
    return std::string("malformed ") + commandName(command) + ": expected " + expectation;
}

std::string eventText(const std::string& name) {
    return "event " + name;
}

}  // namespace vantric_sim
