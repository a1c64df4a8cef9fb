// What is wrong in a document, with its place.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace vantric_test {

class DocumentFault : public std::runtime_error {
  public:
    // `line` counts from 1.
    DocumentFault(int line, const std::string& text)
        : std::runtime_error("line " + std::to_string(line) + ": " + text) {}
};

using Faults = std::vector<std::string>;

// Runs `check`; what it throws becomes one more of `faults`.
inline void collect(Faults& faults, const std::function<void()>& check) {
    try {
        check();
    } catch (const std::exception& fault) {
        faults.emplace_back(fault.what());
    }
}

inline std::string joined(const Faults& faults) {
    std::string text;
    for (const std::string& fault : faults) {
        text += fault + "\n";
    }
    return text;
}

}  // namespace vantric_test
