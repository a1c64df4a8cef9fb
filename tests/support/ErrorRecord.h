// What a role with the environment errorsOnConsole() leaves on standard output for log records.
#pragma once

#include <gtest/gtest.h>

#include <iomanip>
#include <map>
#include <sstream>
#include <string>

namespace vantric_test {

inline std::map<std::string, std::string> errorsOnConsole() {
    return {{"VRAX_LOG_LEVEL", "error"}, {"VRAX_LOG_TYPE", "console"}};
}

// Whether `output` is one log line of level error and nothing else.
inline testing::AssertionResult isOneErrorRecord(const std::string& output,
                                                 const std::string& sourceName, int line,
                                                 const std::string& text) {
    constexpr std::size_t stampLength = 26;  // "[", asctime()'s 24 characters and newline
    std::ostringstream rest;
    rest << "] <error>:   ERROR|" << std::setw(35) << sourceName << '|' << std::setw(5) << line
         << '|' << text << '\n';
    const bool isStamped =
        output.size() > stampLength && output[0] == '[' && output.find('\n') == stampLength - 1;
    if (isStamped && output.substr(stampLength) == rest.str()) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "expected a stamp and\n"
                                       << rest.str() << "but the output is\n"
                                       << output;
}

}  // namespace vantric_test
