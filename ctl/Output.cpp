#include "ctl/Output.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <system_error>

#include "Vantric/ModemState.h"
#include "ctl/Failure.h"
#include "ctl/Text.h"

namespace vantricctl {

namespace {

using com_qel::Orvane::Vantric::RecordField;

constexpr const char* exactSuffix = "Hex";
constexpr const char* typeSuffix = "Type";

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

bool isExactCopy(const Report& report, const std::string& key) {
    return endsWith(key, exactSuffix) &&
           report.contains(key.substr(0, key.size() - std::strlen(exactSuffix)));
}

// "wifiSsid" as "wifi ssid"; names of objects and headings stay.
std::string labelOf(const std::string& key) {
    if (key.find(' ') != std::string::npos) {
        return key;
    }
    std::string label;
    for (const char character : key) {
        const bool isCapital = character >= 'A' && character <= 'Z';
        if (isCapital && label.empty()) {
            return key;
        }
        label += isCapital ? std::string(" ") + static_cast<char>(character - 'A' + 'a')
                           : std::string(1, character);
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
    for (const auto& [key, value] : element.items()) {
        if (!isExactCopy(element, key)) {
            line += (line.empty() ? "" : ", ") + labelOf(key) + " " + valueText(value);
        }
    }
    return line;
}

// The elements of a list take one line each.
void appendText(const Report& report, const std::string& indentation, std::string& text) {
    std::size_t width = 0;
    for (const auto& [key, value] : report.items()) {
        width = value.is_structured() ? width : std::max(width, labelOf(key).size());
    }
    for (const auto& [key, value] : report.items()) {
        std::string label = labelOf(key);
        if (report.is_array()) {
            text += indentation + lineOf(value) + "\n";
        } else if (value.is_structured()) {
            text += indentation + label + (value.empty() ? ": none\n" : ":\n");
            appendText(value, indentation + "  ", text);
        } else if (!isExactCopy(report, key)) {
            label.resize(width, ' ');
            text += indentation + label + "  " + valueText(value) + "\n";
        }
    }
}

const char* displayNameKey(std::string_view typeKey) {
    return typeKey == "connectivityType"     ? "connectivity"
           : typeKey == "wifiEncryptionType" ? "wifiEncryption"
                                             : "encryption";
}

void addField(Report& report, const char* place, const RecordField& field, bool showSecrets) {
    const std::string key = field.key;
    if (field.kind == RecordField::Kind::Text) {
        if (key == "wifiPassword" && !showSecrets) {
            report[key] = nullptr;
        } else {
            addText(report, key, {place, strnlen(place, field.size)});
        }
        return;
    }
    using namespace com_qel::Orvane::Vantric;
    int32_t number = 0;
    std::memcpy(&number, place, sizeof(number));
    report[key] = number;
    if (endsWith(key, typeSuffix)) {
        report[displayNameKey(key)] =
            key == "connectivityType" ? connectivityTypeName(number) : encryptionTypeName(number);
    }
}

}  // namespace

void addText(Report& report, const std::string& key, std::string_view bytes) {
    report[key] = std::string(bytes);
    report[key + exactSuffix] = hexadecimal(bytes);
}

void addFields(Report& report, const void* record, const RecordFields& fields, bool showSecrets) {
    for (const RecordField& field : fields) {
        addField(report, static_cast<const char*>(record) + field.offset, field, showSecrets);
    }
}

void writeOutput(const std::string& text) {
    const bool isWritten =
        std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    if (isWritten) {
        return;
    }
    const int error = errno;
    if (error == EPIPE) {
        throw OutputClosed();
    }
    throw Failure(statusFailed, "Cannot write to standard output: " +
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

void writeNotice(const std::string& sentence) {
    std::fprintf(stderr, "vantricctl: %s\n", sentence.c_str());
}

std::string secondsText(double seconds) {
    char text[32];
    std::snprintf(text, sizeof(text), "%.1f s", seconds);
    return text;
}

}  // namespace vantricctl
