// Running vantricctl on the test's own objects.
#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/support/ChildProcess.h"

namespace vantric_test {

using Json = nlohmann::json;
using Words = std::vector<std::string>;

inline Command vantricctl(const Words& arguments) {
    return {VANTRICCTL_PATH, arguments};
}

// What a run prints with --json, which must be one JSON text, and its exit status.
struct CtlResult {
    int status;
    Json json;
    std::string errors;
};

inline CtlResult runForJson(Words arguments) {
    arguments.emplace_back("--json");
    const Result result = run(vantricctl(arguments));
    EXPECT_TRUE(Json::accept(result.output)) << result.output << result.errors;
    return {result.status.code(), Json::parse(result.output, nullptr, false), result.errors};
}

}  // namespace vantric_test
