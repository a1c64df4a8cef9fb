#include "ctl/Output.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>
#include <system_error>

#include "Vantric/ModemState.h"
#include "ctl/Failure.h"

namespace vantricctl {

namespace {

using namespace com_qel::Orvane::Vantric;

struct Range {
    uint32_t first;
    uint32_t last;
};

// Control characters, those that break lines or turn the direction of writing, and what is no
// character.
constexpr Range unsafe[] = {{0x00, 0x1f},       {0x7f, 0x9f},          {0x61c, 0x61c},
                            {0x200b, 0x200f},   {0x2028, 0x202e},      {0x2060, 0x206f},
                            {0xd800, 0xdfff},   {0xfeff, 0xfeff},      {0xfff9, 0xfffb},
                            {0xe0000, 0xe0fff}, {0x110000, UINT32_MAX}};

// The smallest code of a character, by its number of bytes: a smaller one has fewer bytes.
constexpr uint32_t smallestCodes[] = {0, 0, 0x80, 0x800, 0x10000};

// How many of the bytes, which must not be empty, are the first character; 0 when they do not begin
// with one of UTF-8 that is safe to show.
std::size_t firstLength(std::string_view bytes) {
    const auto first = static_cast<unsigned char>(bytes.front());
    const std::size_t length = first < 0x80 ? 1 : first < 0xe0 ? 2 : first < 0xf0 ? 3 : 4;
    if ((first >= 0x80 && first < 0xc0) || first >= 0xf8 || length > bytes.size()) {
        return 0;
    }
    uint32_t code = length == 1 ? first : first & (0x7fU >> length);
    for (const char character : bytes.substr(1, length - 1)) {
        const auto byte = static_cast<unsigned char>(character);
        if ((byte & 0xc0U) != 0x80) {
            return 0;
        }
        code = code << 6U | (byte & 0x3fU);
    }
    for (const Range& range : unsafe) {
        if (code >= range.first && code <= range.last) {
            return 0;
        }
    }
    return code < smallestCodes[length] ? 0 : length;
}

constexpr std::string_view typeSuffix = "Type";
constexpr std::string_view exactSuffix = "Hex";

// "wifiSsid" as "wifi ssid"; names of objects and headings stay.
std::string labelOf(const std::string& name) {
    const auto isCapital = [](char character) { return character >= 'A' && character <= 'Z'; };
    if (isCapital(name.front()) || name.find(' ') != std::string::npos) {
        return name;
    }
    std::string label;
    for (const char character : name) {
        label += isCapital(character) ? " " : "";
        label += static_cast<char>(std::tolower(character));
    }
    return label;
}

std::string valueText(const Report& value) {
    if (value.is_string()) {
        return shown(value.get_ref<const std::string&>());
    }
    if (value.is_boolean()) {
        return value.get<bool>() ? "yes" : "no";
    }
    return value.is_null() ? "-" : value.dump();
}

// "process 12, program vantricsim"
std::string lineOf(const Report& element) {
    std::string line;
    for (const auto& [name, value] : element.items()) {
        if (!isExactText(element, name)) {
            line += (line.empty() ? "" : ", ") + labelOf(name) + " " + valueText(value);
        }
    }
    return line;
}

void appendText(const Report& report, const std::string& indentation, std::string& text) {
    std::size_t width = 0;
    for (const auto& [name, member] : report.items()) {
        width = member.is_structured() ? width : std::max(width, labelOf(name).size());
    }
    for (const auto& [name, member] : report.items()) {
        std::string label = labelOf(name);
        if (report.is_array()) {
            text += indentation + lineOf(member) + "\n";
        } else if (member.is_structured()) {
            text += indentation + label + (member.empty() ? ": none\n" : ":\n");
            appendText(member, indentation + "  ", text);
        } else if (!isExactText(report, name)) {
            label.resize(width, ' ');
            text += indentation + label + "  " + valueText(member) + "\n";
        }
    }
}

}  // namespace

std::string shown(std::string_view bytes) {
    std::string text;
    while (!bytes.empty()) {
        const std::size_t length = firstLength(bytes);
        if (length == 0) {
            text += "\\x" + hexadecimal(bytes.substr(0, 1));
        } else {
            text += bytes.front() == '\\' ? "\\\\" : bytes.substr(0, length);
        }
        bytes.remove_prefix(length == 0 ? 1 : length);
    }
    return text;
}

std::string hexadecimal(std::string_view bytes) {
    constexpr const char* digits = "0123456789abcdef";
    std::string text;
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        text += {digits[byte >> 4U], digits[byte & 0xfU]};
    }
    return text;
}

void addText(Report& report, const std::string& name, std::string_view bytes) {
    report[name] = std::string(bytes);
    report[name + std::string(exactSuffix)] = hexadecimal(bytes);
}

bool isExactText(const Report& report, const std::string& name) {
    const std::size_t end = name.rfind(exactSuffix);
    return end != std::string::npos && report.contains(name.substr(0, end));
}

void addFields(Report& report, const void* record, const RecordFields& fields, Secrets secrets) {
    for (const RecordField& field : fields) {
        const char* place = static_cast<const char*>(record) + field.offset;
        const std::string name = field.key;
        if (field.kind == RecordField::Kind::Integer) {
            int32_t number = 0;
            std::memcpy(&number, place, sizeof(number));
            report[name] = number;
            if (const std::size_t end = name.rfind(typeSuffix); end != std::string::npos) {
                report[name.substr(0, end)] = name == "connectivityType"
                                                  ? connectivityTypeName(number)
                                                  : encryptionTypeName(number);
            }
        } else if (name != "wifiPassword" || secrets == Secrets::Shown) {
            addText(report, name, {place, strnlen(place, field.size)});
        } else if (secrets == Secrets::Hidden) {
            report[name] = nullptr;
        }
    }
}

void writeOutput(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() &&
        std::fflush(stdout) == 0) {
        return;
    }
    const int error = errno;
    throw Failure(statusFailed, error == EPIPE ? ""
                                               : "Cannot write to standard output: " +
                                                     std::generic_category().message(error) + ".");
}

void writeReport(const Report& report, bool asJson, const char* prefix) {
    std::string text = prefix;
    if (asJson) {
        text += report.dump(-1, ' ', true, Report::error_handler_t::replace) + "\n";
    } else {
        appendText(report, "", text);
    }
    writeOutput(text);
}

}  // namespace vantricctl
