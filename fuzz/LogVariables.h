// The environment variables of the logging, for as long as an object lives.
//
// Replaces the environment's table instead of calling setenv(), which keeps every text it was ever
// given.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace vantric_fuzz {

class LogVariables {
  public:
    static constexpr std::size_t count = 5;

    // Level, type, root, name and size; an empty one is not set. A text ends at its first NUL.
    using Texts = std::array<std::optional<std::string>, count>;

    explicit LogVariables(const Texts& texts);
    ~LogVariables();

    LogVariables(const LogVariables&) = delete;
    LogVariables& operator=(const LogVariables&) = delete;

  private:
    std::vector<std::string> settings_;
    std::vector<char*> table_;
    char** previous_;
};

}  // namespace vantric_fuzz
