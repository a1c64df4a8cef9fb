// Exact comparison of what a process logged to its standard output.
#pragma once

#include <map>
#include <string>

namespace vantric_test {

// The environment of a child that logs records from `level` ("error", "warning", ...) upwards to
// its standard output.
std::map<std::string, std::string> loggingFrom(const std::string& level);

// A log's text with what differs from run to run made equal: the time stamps.
std::string withoutStamps(const std::string& log);

// The same with the line numbers made equal, too.
std::string masked(const std::string& log);

// A record as masked() leaves it, or as withoutStamps() does when `line` is the line number in its
// field of five; `file` is the base name of its source.
std::string errorRecord(const std::string& file, const std::string& message,
                        const std::string& line = "#####");
std::string warningRecord(const std::string& file, const std::string& message);

}  // namespace vantric_test
