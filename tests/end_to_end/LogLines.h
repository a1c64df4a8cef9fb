// The log records of vantricprobe as they show in its outputs.
#pragma once

#include <string>

namespace vantric_test {

// `text` with "STAMP" for every time stamp of a log line and "LINE" for the line number of a record
// whose number may change from one release to the next. Anything that has not exactly the shape of
// the one or the other stays.
std::string normalised(const std::string& text);

// A record as a text file or the console shows it, normalised, without the line end.
constexpr const char* connectionRecord =  // refuseConnections()
    "[STAMP\n] <error>:   ERROR|                        ModemClient|LINE|"
    "Failed to connect to shared memory, error: Failed to open shared mem file, "
    "error: Invalid argument";

// From now on every attempt to connect fails at once, with one error record.
void refuseConnections();

}  // namespace vantric_test
