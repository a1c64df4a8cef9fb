#include "sim/EventLog.h"

#include <cstdio>
#include <ctime>

namespace vantric_sim {

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

std::string hexEscape(char character) {
    char escape[8];
    std::snprintf(escape, sizeof(escape), "\\x%02x", static_cast<unsigned char>(character));
    return escape;
}

std::string quoted(std::string_view bytes) {
    std::string result = "\"";
    for (const char character : bytes) {
        if (character < ' ' || character > '~') {
            result += hexEscape(character);
            continue;
        }
        if (character == '"' || character == '\\') {
            result += '\\';
        }
        result += character;
    }
    return result + '"';
}

}  // namespace vantric_sim
