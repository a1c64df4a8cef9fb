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

// The arguments say help, so that looking at any of them would show.
int runWithCount(int argumentCount) {
    const char* arguments[] = {"-h", nullptr};
    return vantricprobe::runCommandLine(argumentCount, arguments);
}

const RoleRegistration countOfZero("countOfZero", [](const auto&) { return runWithCount(0); });
const RoleRegistration negativeCount("negativeCount", [](const auto&) { return runWithCount(-1); });
const RoleRegistration countOfOne("countOfOne", [](const auto&) { return runWithCount(1); });

Result runRoleNamed(const char* name) {
    Result result = run(roleCommand(name));
    EXPECT_TRUE(result.status.has_value());
    return result;
}

TEST(CommandLine, doesNothingForACountOfZero) {
    const Result result = runRoleNamed("countOfZero");
    EXPECT_EQ(result.status->code(), 0);
    EXPECT_EQ(result.output, "");
}

TEST(CommandLine, doesNothingForANegativeCount) {
    const Result result = runRoleNamed("negativeCount");
    EXPECT_EQ(result.status->code(), 0);
    EXPECT_EQ(result.output, "");
}

TEST(CommandLine, examinesTheFirstArgumentFromACountOfOneOn) {
    const Result result = runRoleNamed("countOfOne");
    EXPECT_EQ(result.status->code(), 0);
    EXPECT_EQ(result.output.substr(0, 21), "Vantric test client.\n");
}

TEST(CommandLine, touchesNoArgumentForACountOfZero) {
    EXPECT_EQ(vantricprobe::runCommandLine(0, nullptr), 0);
    EXPECT_TRUE(vantric_test::sharedMemoryNames().empty());
}

}  // namespace
