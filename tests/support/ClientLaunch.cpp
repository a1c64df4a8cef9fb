#include "tests/support/ClientLaunch.h"

#include <unistd.h>

#include <csignal>
#include <string>
#include <vector>

#include "tests/support/Privileges.h"
#include "tests/support/Roles.h"

namespace vantric_test {

namespace {

constexpr const char* launcherRole = "launchClient";
constexpr int cannotLaunch = 126;

bool closeOutput() {
    return close(STDOUT_FILENO) == 0;
}

bool ignoreBrokenPipes() {
    return std::signal(SIGPIPE, SIG_IGN) != SIG_ERR;
}

bool closeErrors() {
    return close(STDERR_FILENO) == 0;
}

constexpr bool (*preparations[])() = {closeOutput, closeErrors, ignoreBrokenPipes,
                                      obeyFileModesBeyondExec};

// arguments: index of the preparation, path of the program, its arguments from argv[0] on
int launch(const std::vector<std::string>& arguments) {
    if (!preparations[std::stoul(arguments.at(0))]()) {
        return cannotLaunch;
    }
    Command command;
    command.program = arguments.at(1);
    command.commandName = arguments.at(2);
    command.arguments.assign(arguments.begin() + 3, arguments.end());
    replaceThisProcess(command);
    return cannotLaunch;
}

const RoleRegistration launcher(launcherRole, launch);

}  // namespace

Command launching(Launch launch, const Command& command) {
    std::vector<std::string> arguments = {std::to_string(static_cast<int>(launch)), command.program,
                                          command.commandName.value_or(command.program)};
    arguments.insert(arguments.end(), command.arguments.begin(), command.arguments.end());
    Command result = roleCommand(launcherRole, arguments, command.environment);
    result.standardOutput = command.standardOutput;
    return result;
}

}  // namespace vantric_test
