// The examples of the pages do what the pages say.
#include <gtest/gtest.h>

#include "tests/packaging/ManualPage.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using namespace vantric_test;

Command program(const std::string& path, const std::vector<std::string>& arguments = {}) {
    Command command;
    command.program = path;
    command.arguments = arguments;
    return command;
}

TEST(LibraryPageExamples, theCProgramPrintsTheNetworksName) {
    PublishedServer server;
    auto state = freshState();
    setText(state.wifiSsid, "Guest Network");
    server.state.publish(state);

    const Result result = run(program(C_EXAMPLE_PATH));
    EXPECT_TRUE(result.status && result.status->raw == 0);
    EXPECT_EQ(result.output, "Guest Network\n");
    EXPECT_EQ(result.errors, "");
}

TEST(LibraryPageExamples, theCProgramSaysThatThereIsNoState) {
    const Result result = run(program(C_EXAMPLE_PATH));
    EXPECT_TRUE(result.status && result.status->code() == 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "There is no state.\n");
}

TEST(LibraryPageExamples, theCppProgramListsTheNetworksStrongestFirst) {
    ChildProcess simulator(program(VANTRICSIM_PATH));
    ASSERT_TRUE(simulator.waitForOutput("ready\n"));

    const Result result = run(program(CPP_EXAMPLE_PATH));
    EXPECT_TRUE(result.status && result.status->raw == 0);
    EXPECT_EQ(result.output,
              "home, WPA2 (PSK), 72\n"
              "office, WPA+WPA2 Enterprise (RADIUS), 58\n"
              "guest, None, 35\n");
    EXPECT_EQ(result.errors, "");
}

TEST(SimulatorPageExamples, theScenarioHasNoFault) {
    const auto scenarios =
        allMatches(pageText("vantricsim.1"), "^( +\\{\n[^]*?^ +\\}\n)\nSEE ALSO");
    ASSERT_EQ(scenarios.size(), 1U);
    const TemporaryFolder folder;
    const std::string file = folder.write("example.json", scenarios.at(0).at(0));

    const Result result = run(program(VANTRICSIM_PATH, {"--check", "--scenario", file}));
    EXPECT_TRUE(result.status && result.status->raw == 0);
    EXPECT_EQ(result.errors, "");
}

}  // namespace
