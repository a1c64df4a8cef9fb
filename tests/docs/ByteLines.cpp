#include "tests/docs/ByteLines.h"

#include <algorithm>
#include <cstdio>
#include <regex>
#include <sstream>

namespace vantric_test {

namespace {

std::string hexText(unsigned char byte) {
    char text[4];
    std::snprintf(text, sizeof(text), "%02x", static_cast<unsigned int>(byte));
    return text;
}

std::string hexText(const Bytes& bytes, std::size_t first, std::size_t end) {
    std::string text;
    for (std::size_t index = first; index < end; ++index) {
        text += ' ' + hexText(bytes[index]);
    }
    return text;
}

}  // namespace

bool isByteLine(const TextLine& line) {
    return !line.text.empty() && line.text.front() == ' ';
}

ByteLine parseByteLine(const TextLine& line) {
    static const std::regex form(
        R"( +([0-9]+)  ([0-9a-f]{2}(?: {1,2}[0-9a-f]{2})*)(?: \* ([0-9]+))?(?: {2,}([^ ].*))?)");
    std::smatch match;
    if (!std::regex_match(line.text, match, form)) {
        throw DocumentFault(line.number, "not a line of bytes: " + line.text);
    }
    ByteLine result = {std::stoul(match[1]), {}, match[4]};
    std::istringstream pairs(match[2]);
    for (std::string pair; pairs >> pair;) {
        result.bytes.push_back(static_cast<unsigned char>(std::stoul(pair, nullptr, 16)));
    }
    if (match[3].matched) {
        if (result.bytes.size() != 1) {
            throw DocumentFault(line.number, "only one byte can be repeated");
        }
        result.bytes.assign(std::stoul(match[3]), result.bytes.front());
    }
    return result;
}

void overlay(Bytes& image, const ByteLine& line, int number) {
    if (line.offset > image.size() || line.bytes.size() > image.size() - line.offset) {
        throw DocumentFault(number, "bytes outside the object");
    }
    std::copy(line.bytes.begin(), line.bytes.end(),
              image.begin() + static_cast<std::ptrdiff_t>(line.offset));
}

std::string payloadOf(const std::string& text) {
    static const std::regex plain("\"([^\"]*)\"");
    static const std::regex repeated("([0-9]{1,4}) bytes \"([^\"])\"");
    std::smatch match;
    if (std::regex_match(text, match, plain)) {
        return match[1];
    }
    if (std::regex_match(text, match, repeated)) {
        return std::string(std::stoul(match[1]), match[2].str().front());
    }
    throw std::runtime_error("not a payload: " + text);
}

void requireEqual(const Bytes& actual, const Bytes& expected, int line) {
    constexpr std::size_t shownRuns = 10;
    if (actual.size() != expected.size()) {
        throw DocumentFault(line, "the object has " + std::to_string(actual.size()) + " bytes");
    }
    std::string differences;
    std::size_t runs = 0;
    for (std::size_t index = 0; index < actual.size() && runs < shownRuns; ++index) {
        if (actual[index] == expected[index]) {
            continue;
        }
        const std::size_t first = index;
        while (index < actual.size() && index - first < 16 && actual[index] != expected[index]) {
            ++index;
        }
        differences += "\n    " + std::to_string(first) + " " + hexText(actual, first, index) +
                       "  instead of " + hexText(expected, first, index);
        ++runs;
    }
    if (runs != 0) {
        throw DocumentFault(line, "the object holds" + differences);
    }
}

}  // namespace vantric_test
