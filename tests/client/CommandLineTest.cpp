// What no shell can start: argument counts below 1.
#include <gtest/gtest.h>

#include "client/CommandLine.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/Roles.h"

namespace {

using vantric_test::Result;
using vantric_test::roleCommand;
using vantric_test::RoleRegistration;
using vantric_test::run;
using Arguments = std::vector<std::string>;

// The arguments say help, so that looking at any of them would show.
int runWithCount(int argumentCount) {
    const char* arguments[] = {"-h", nullptr};
    return vantricprobe::runCommandLine(argumentCount, arguments);
}

// The role's argument is the count.
int runWithGivenCount(const Arguments& arguments) {
    return runWithCount(std::stoi(arguments.at(0)));
}
const RoleRegistration commandLine("commandLine", runWithGivenCount);

Result runInProcess(const std::string& argumentCount) {
    Result result = run(roleCommand("commandLine", {argumentCount}));
    EXPECT_TRUE(result.status.has_value());
    return result;
}

TEST(CommandLine, doesNothingForACountOfZero) {
    const Result result = runInProcess("0");
    EXPECT_EQ(result.status.value().code(), 0);
    EXPECT_EQ(result.output, "");
}

TEST(CommandLine, doesNothingForANegativeCount) {
    const Result result = runInProcess("-1");
    EXPECT_EQ(result.status.value().code(), 0);
    EXPECT_EQ(result.output, "");
}

TEST(CommandLine, examinesTheFirstArgumentFromACountOfOneOn) {
    const Result result = runInProcess("1");
    EXPECT_EQ(result.status.value().code(), 0);
    EXPECT_EQ(result.output.substr(0, 21), "Vantric test client.\n");
}

TEST(CommandLine, touchesNoArgumentForACountOfZero) {
    EXPECT_EQ(vantricprobe::runCommandLine(0, nullptr), 0);
    EXPECT_TRUE(vantric_test::sharedMemoryNames().empty());
}

}  // namespace
