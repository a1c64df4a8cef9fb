// Exact comparison of what a process logged to its standard output.
#pragma once

#include <map>
#include <string>

namespace vantric_test {

// The environment of a child that logs records from `level` ("error", "warning", ...) upwards to
// its standard output.
std::map<std::string, std::string> loggingFrom(const std::string& level);

// A log's text with what differs from run to run made equal: the time stamps and the line numbers.
std::string masked(const std::string& log);

// A record as masked() leaves it; `file` is the base name of its source.
std::string errorRecord(const std::string& file, const std::string& message);
std::string warningRecord(const std::string& file, const std::string& message);

}  // namespace vantric_test
