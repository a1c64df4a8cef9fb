// Parts of a test that must run in a process of their own.
//
// A role is a function in a test file; spawning it re-executes the test binary, so the role starts
// with fresh statics (the logger unconfigured, say) and can be killed at any point. It shares the
// parent's private /dev/shm.
#pragma once

#include <string>
#include <vector>

#include "tests/support/ChildProcess.h"

namespace vantric_test {

using Arguments = std::vector<std::string>;
using RoleFunction = int (*)(const Arguments& arguments);

// Registers `function` under `name`, which must be unique in its test binary:
//     const RoleRegistration holder("lockHolder", [](const auto& arguments) { ...; return 0; });
class RoleRegistration {
  public:
    RoleRegistration(const char* name, RoleFunction function) noexcept;
};

// The command that runs a role in a new process; its exit code is the function's result.
Command roleCommand(const std::string& name, const std::vector<std::string>& arguments = {},
                    const std::map<std::string, std::string>& environment = {});

// For the test binary's main(): runs the role that the command line names, if any.
bool runRole(int argc, char** argv, int& exitCode);

}  // namespace vantric_test
