// The log records of vantricprobe as they show in its outputs.
#pragma once

#include <cstddef>
#include <string>

namespace vantric_test {

// `text` with "STAMP" for every time stamp of a log line and "LINE" for the line number of a record
// whose number may change from one release to the next. Anything that has not exactly the shape of
// the one or the other stays. Durations are masked as well.
std::string normalised(const std::string& text);

// Records as a text file or the console shows them, normalised.
constexpr const char* staleHostnameRecord =
    "[STAMP\n] <error>:   ERROR|                        ModemClient|LINE|"
    "Failed to get modem Hostname, error: SharedMemoryModemState is stale.\n";
constexpr const char* lockRecord =  // breakOneLock()
    "[STAMP\n] <error>:   ERROR|                   MultiProcessLock|   56|"
    "MultiProcessLock: sem_open failed\n";
constexpr const char* connectionRecord =  // refuseConnections()
    "[STAMP\n] <error>:   ERROR|                        ModemClient|LINE|"
    "Failed to connect to shared memory, error: Failed to open shared mem file, "
    "error: Invalid argument\n";
constexpr std::size_t connectionRecordSize = 186;  // bytes, stamp and line number unmasked
constexpr const char* forgetTimeoutRecord =        // its text has a line end of its own
    "[STAMP\n] <warning>: WARNING|                       ModemClientC|LINE|"
    "Forget current wifi settings (blocking) timed out after 60 seconds.\n\n";

// The part of a line that the system log gets as well.
std::string textOf(const std::string& record);

// From now on every attempt to connect fails at once, with one error record.
void refuseConnections();

// From now on the first lock that a connection needs cannot be opened, which is one error record;
// the connection works.
void breakOneLock();

}  // namespace vantric_test
