// The lines that the server prints while it runs, one for each thing that happened.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace vantric_sim {

// Takes one line, without its end.
using LineOutput = std::function<void(const std::string& line)>;

using WallTime = std::chrono::system_clock::time_point;

// "2026-11-21 03:35:24.123", local time.
std::string stampText(WallTime time);

// In double quotes, which are escaped by a backslash as backslashes are; control bytes and bytes
// from 0x7f on are \xNN.
std::string quoted(std::string_view bytes);

// "frame 7 SetWifiSsid 4 "home"": number, name or Unknown, payload length, payload.
std::string frameText(uint32_t command, std::string_view payload);

// "malformed SetWifiSsid: expected ...", for a frame that had no effect.
std::string malformedFrameText(uint32_t command);

// "event vanish", for an event of the timeline.
std::string eventText(const std::string& name);

}  // namespace vantric_sim
