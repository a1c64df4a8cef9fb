#include "tests/end_to_end/Transcript.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>

namespace vantric_test {

std::string masked(const std::string& output) {
    static const std::regex duration(R"(\b[0-9]+( ?)(us|ms|sec)\b)");
    return std::regex_replace(output, duration, "#$1$2");
}

int64_t numberAfter(const std::string& output, const std::string& label) {
    const std::size_t start = output.find(label);
    if (start == std::string::npos) {
        ADD_FAILURE() << '"' << label << "\" is missing in:\n" << output;
        return -1;
    }
    const std::size_t first = start + label.size();
    const std::size_t end = output.find_first_not_of("0123456789", first);
    if (end == first) {
        ADD_FAILURE() << "no number after \"" << label << "\" in:\n" << output;
        return -1;
    }
    return std::stoll(output.substr(first, end - first));
}

std::size_t countDots(const std::string& output) {
    std::size_t longest = 0;
    std::size_t current = 0;
    for (const char character : output) {
        current = character == '.' ? current + 1 : 0;
        longest = std::max(longest, current);
    }
    return longest;
}

std::size_t countOf(const std::string& output, const std::string& text) {
    std::size_t count = 0;
    for (std::size_t at = output.find(text); at != std::string::npos;
         at = output.find(text, at + text.size())) {
        ++count;
    }
    return count;
}

std::string repeated(const std::string& text, std::size_t count) {
    std::string result;
    for (std::size_t index = 0; index < count; ++index) {
        result += text;
    }
    return result;
}

}  // namespace vantric_test
