// How the server's lines and messages show times and bytes.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <string_view>

namespace vantric_sim {

// Takes one line, without its end.
using LineOutput = std::function<void(const std::string& line)>;

using WallTime = std::chrono::system_clock::time_point;

// "2026-11-21 03:35:24.123", local time.
std::string stampText(WallTime time);

// "\x0a" for a newline.
std::string hexEscape(char character);

// In double quotes, which are escaped by a backslash as backslashes are; control bytes and bytes
// from 0x7f on are \xNN.
std::string quoted(std::string_view bytes);

}  // namespace vantric_sim
