// The record that every measurement of a log line writes.
#pragma once

namespace vantric_bench {

constexpr const char* logSourcePath = "Vantric/ModemClient";
constexpr const char* logSourceName = "ModemClient";
constexpr int logLine = 242;
constexpr const char* logText = "Failed to get modem Hostname, error: ";
constexpr const char* logReason = "Failed to read from shared memory.";

}  // namespace vantric_bench
