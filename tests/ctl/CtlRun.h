// Running vantricctl on the test's own objects.
#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/support/ChildProcess.h"

namespace vantric_test {

using Json = nlohmann::json;
using Words = std::vector<std::string>;

Command vantricctl(const Words& arguments);

// What a run prints with --json, and its exit status.
struct CtlResult {
    int status;
    Json json;
    std::string errors;
};

// The output must be one JSON text.
CtlResult runForJson(Words arguments);

// The bytes and the attributes of everything in /dev/shm.
std::map<std::string, std::string> sharedMemoryImage();

}  // namespace vantric_test
