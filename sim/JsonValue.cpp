#include "sim/JsonValue.h"

#include <algorithm>
#include <limits>
#include <nlohmann/json.hpp>
#include <utility>

#include "sim/EventLog.h"

namespace vantric_sim {

namespace {

// Keeps messages on one readable line.
constexpr std::size_t longestQuotation = 60;

std::string quotation(const nlohmann::json& value) {
    const std::string text = value.dump(-1, ' ', true);
    return text.size() <= longestQuotation ? text : text.substr(0, longestQuotation) + "...";
}

std::string shortNumber(double value) {
    return nlohmann::json(value).dump();
}

// "a, b or c", for messages that list what is allowed.
std::string alternatives(const std::vector<std::string>& names) {
    std::string result;
    for (std::size_t index = 0; index < names.size(); ++index) {
        const bool isLast = index + 1 == names.size();
        result += index == 0 ? "" : isLast ? " or " : ", ";
        result += names[index];
    }
    return result;
}

}  // namespace

// Control characters must neither end the text nor reach a terminal.
std::string ScenarioError::printable(const std::string& reason) {
    std::string result;
    for (const char character : reason) {
        const auto byte = static_cast<unsigned char>(character);
        result += byte < 0x20 || byte == 0x7f ? hexEscape(character) : std::string(1, character);
    }
    return result;
}

JsonValue::JsonValue(const nlohmann::json& value, std::string path)
    : value_(&value), path_(std::move(path)) {}

int64_t JsonValue::integer(int64_t minimum, int64_t maximum) const {
    const bool isRepresentable =
        value_->is_number_integer() &&
        (!value_->is_number_unsigned() ||
         value_->get<uint64_t>() <= static_cast<uint64_t>(std::numeric_limits<int64_t>::max()));
    const int64_t result = isRepresentable ? value_->get<int64_t>() : 0;
    if (!isRepresentable || result < minimum || result > maximum) {
        failExpecting("a whole number from " + std::to_string(minimum) + " to " +
                      std::to_string(maximum));
    }
    return result;
}

double JsonValue::number(double minimum, double maximum) const {
    const double result = value_->is_number() ? value_->get<double>() : 0.0;
    if (!value_->is_number() || result < minimum || result > maximum) {
        failExpecting("a number from " + shortNumber(minimum) + " to " + shortNumber(maximum));
    }
    return result;
}

std::string JsonValue::text(std::size_t maximumLength) const {
    std::string result = value_->is_string() ? value_->get<std::string>() : std::string();
    if (!value_->is_string() || result.size() > maximumLength ||
        result.find('\0') != std::string::npos) {
        failExpecting("a text of at most " + std::to_string(maximumLength) + " bytes, without NUL");
    }
    return result;
}

std::size_t JsonValue::choice(const std::vector<std::string>& names) const {
    const std::string name = value_->is_string() ? value_->get<std::string>() : std::string();
    const auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end()) {
        failExpecting(alternatives(names));
    }
    return static_cast<std::size_t>(found - names.begin());
}

std::vector<JsonValue> JsonValue::elements(std::size_t maximumCount) const {
    if (!value_->is_array()) {
        failExpecting("an array");
    }
    if (value_->size() > maximumCount) {
        throw ScenarioError(path_ + ": expected at most " + std::to_string(maximumCount) +
                            " elements, found " + std::to_string(value_->size()));
    }
    std::vector<JsonValue> result;
    for (const nlohmann::json& element : *value_) {
        result.emplace_back(element, path_ + "[" + std::to_string(result.size()) + "]");
    }
    return result;
}

void JsonValue::object(const std::vector<Key>& keys) const {
    if (!value_->is_object()) {
        failExpecting("an object");
    }
    std::vector<std::string> names(keys.size());
    std::transform(keys.begin(), keys.end(), names.begin(),
                   [](const Key& key) { return key.name; });
    for (const auto& item : value_->items()) {
        if (std::find(names.begin(), names.end(), item.key()) == names.end()) {
            throw ScenarioError(pathOf(item.key()) + ": unknown key, expected " +
                                alternatives(names));
        }
    }
    for (const Key& key : keys) {
        if (key.missing != nullptr || value_->contains(key.name)) {
            key.read(member(key.name, key.missing));
        }
    }
}

JsonValue JsonValue::member(const std::string& key, const char* expectation) const {
    if (!value_->is_object()) {
        failExpecting("an object");
    }
    const auto found = value_->find(key);
    if (found == value_->end()) {
        throw ScenarioError(pathOf(key) + ": missing, expected " + expectation);
    }
    return {*found, pathOf(key)};
}

void JsonValue::failExpecting(const std::string& expectation) const {
    const std::string place = path_.empty() ? "the whole document" : path_;
    throw ScenarioError(place + ": expected " + expectation + ", found " + quotation(*value_));
}

std::string JsonValue::pathOf(const std::string& key) const {
    return path_.empty() ? key : path_ + "." + key;
}

}  // namespace vantric_sim
