// The record that every measurement of a log line writes, and the folder of their files.
#pragma once

#include "tests/support/TemporaryFolder.h"

namespace vantric_bench {

constexpr const char* logSourcePath = "Vantric/ModemClient";
constexpr const char* logSourceName = "ModemClient";
constexpr int logLine = 242;
constexpr const char* logText = "Failed to get modem Hostname, error: ";
constexpr const char* logReason = "Failed to read from shared memory.";

// In the private memory file system, because the work of a disk would be part of some lines.
const vantric_test::TemporaryFolder& logFolder();

}  // namespace vantric_bench
