#include "tests/support/Roles.h"

#include <cstdio>

namespace vantric_test {

namespace {

constexpr const char* roleOption = "--role";

std::map<std::string, RoleFunction>& roles() {
    static std::map<std::string, RoleFunction> registered;
    return registered;
}

}  // namespace

RoleRegistration::RoleRegistration(const char* name, RoleFunction function) noexcept {
    roles()[name] = function;
}

Command roleCommand(const std::string& name, const std::vector<std::string>& arguments,
                    const std::map<std::string, std::string>& environment) {
    Command command;
    command.program = "/proc/self/exe";
    command.arguments = {roleOption, name};
    command.arguments.insert(command.arguments.end(), arguments.begin(), arguments.end());
    command.environment = environment;
    return command;
}

bool runRole(int argc, char** argv, int& exitCode) {
    const std::vector<std::string> arguments(argv, argv + argc);
    if (arguments.size() < 3 || arguments[1] != roleOption) {
        return false;
    }
    const auto role = roles().find(arguments[2]);
    if (role == roles().end()) {
        std::fprintf(stderr, "no role is named %s\n", arguments[2].c_str());
        exitCode = 2;
        return true;
    }
    exitCode = role->second({arguments.begin() + 3, arguments.end()});
    std::fflush(stdout);
    return true;
}

}  // namespace vantric_test
