// What no shell can start: argument counts below 1.
#include <gtest/gtest.h>

#include "client/CommandLine.h"
#include "tests/support/Roles.h"

namespace {

using namespace vantric_test;

// The argument asks for help, so that its examination shows. The role's argument is the count.
const RoleRegistration counted("commandLine", [](const Arguments& arguments) {
    const char* commandLine[] = {"-h", nullptr};
    return vantricprobe::runCommandLine(std::stoi(arguments.at(0)), commandLine);
});

TEST(CommandLine, examinesTheArgumentsThatAreCountedAndNoOthers) {
    const struct {
        const char* count;
        const char* firstLine;
    } rows[] = {{"-1", ""}, {"0", ""}, {"1", "Vantric test client.\n"}};
    for (const auto& row : rows) {
        const Result result = run(roleCommand("commandLine", {row.count}));
        EXPECT_EQ(result.status.code(), 0);
        EXPECT_EQ(result.output.substr(0, result.output.find('\n') + 1), row.firstLine);
    }
}

}  // namespace
