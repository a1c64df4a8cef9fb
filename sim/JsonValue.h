// A value inside a JSON document that knows its own key path, and typed reading of it.
//
// Every failure is a ScenarioError whose text starts with the path, such as
// "networks[2].signalLevel: expected a whole number ...". Refers to the document, which must
// outlive it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <stdexcept>
#include <string>
#include <vector>

namespace vantric_sim {

// Says why a scenario is refused; texts of the scenario in it may hold anything, and are shown with
// their control characters as "\xNN".
class ScenarioError : public std::runtime_error {
  public:
    explicit ScenarioError(const std::string& reason) : std::runtime_error(printable(reason)) {}

  private:
    static std::string printable(const std::string& reason);
};

class JsonValue {
  public:
    // A key that an object may have, and what takes its value.
    struct Key {
        std::string name;
        std::function<void(const JsonValue&)> read;
        const char* missing = nullptr;  // what was expected there; null when it may be left out
    };

    // The root of a document has an empty path.
    JsonValue(const nlohmann::json& value, std::string path);

    int64_t integer(int64_t minimum, int64_t maximum) const;
    double number(double minimum, double maximum) const;

    // A text of at most `maximumLength` bytes, without NUL.
    std::string text(std::size_t maximumLength) const;

    // The index of the one of `names` that this text equals.
    std::size_t choice(const std::vector<std::string>& names) const;

    // The elements of an array of at most `maximumCount`.
    std::vector<JsonValue> elements(std::size_t maximumCount) const;

    // Reads an object that has no other keys than these, in their order.
    void object(const std::vector<Key>& keys) const;

    // A member of an object that must be there; `expectation` is for the message when it is not.
    JsonValue member(const std::string& key, const char* expectation) const;

  private:
    [[noreturn]] void failExpecting(const std::string& expectation) const;
    std::string pathOf(const std::string& key) const;

    const nlohmann::json* value_;
    std::string path_;
};

}  // namespace vantric_sim
