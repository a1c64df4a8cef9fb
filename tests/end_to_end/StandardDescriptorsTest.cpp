// vantricprobe started with a standard descriptor closed.
#include <gtest/gtest.h>

#include <csignal>

#include "tests/end_to_end/Bench.h"
#include "tests/end_to_end/LogLines.h"
#include "tests/end_to_end/LoggedRun.h"
#include "tests/support/ClientLaunch.h"

namespace {

using vantric_test::bytesOf;
using vantric_test::Command;
using vantric_test::connectionRecord;
using vantric_test::Launch;
using vantric_test::launching;
using vantric_test::normalised;
using vantric_test::probe;
using vantric_test::Result;
using vantric_test::WorkingFolder;

// With the log in the file "dummy".
Result runLaunched(Launch launch, const std::vector<std::string>& arguments) {
    const Command command = withSettings(
        probe(arguments), {{"VRAX_LOG_LEVEL", "error"}, {"VRAX_LOG_TYPE", "text_file"}});
    return run(launching(launch, command));
}

TEST(StandardDescriptors, whatACommandPrintsStaysOutOfTheLogFile) {
    const WorkingFolder folder;
    vantric_test::refuseConnections();
    const Result result = runLaunched(Launch::WithoutOutput, {"--forgetwifi", "--statuscapi"});
    ASSERT_TRUE(result.status.has_value());
    EXPECT_EQ(result.status->code(), 0);
    EXPECT_EQ(normalised(bytesOf("dummy")), std::string(connectionRecord) + connectionRecord);
}

TEST(StandardDescriptors, theLastWordsOfAnAbnormalEndStayOutOfTheLogFile) {
    const WorkingFolder folder;
    vantric_test::refuseConnections();
    const Result result = runLaunched(Launch::WithoutErrors, {"--forgetwifi", "--setwifi"});
    ASSERT_TRUE(result.status.has_value());
    EXPECT_EQ(result.status->signal(), SIGABRT);
    EXPECT_EQ(normalised(bytesOf("dummy")), connectionRecord);
}

}  // namespace
