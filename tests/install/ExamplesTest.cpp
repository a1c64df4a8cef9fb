// The programs of examples/, built against the installed library.
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "tests/end_to_end/Bench.h"
#include "tests/support/ChildProcess.h"

namespace {

using namespace vantric_test;

// The client as it was installed beside a library of that flavour.
class InstalledClient : public testing::TestWithParam<std::string> {};

INSTANTIATE_TEST_SUITE_P(Installed, InstalledClient, testing::Values("static", "shared"),
                         [](const auto& flavour) { return flavour.param; });

TEST_P(InstalledClient, runsWithoutAWordAboutItsLibrary) {
    const Bench bench;
    Command client = probe({"--enablewifi"});
    client.program =
        std::string(EXAMPLES_FOLDER) + "/" + GetParam() + "/prefix/all/bin/vantricprobe";

    EXPECT_NE(runCleanly(client).output.find("Now changing to Wifi\n"), std::string::npos);
}

// The library's flavour, and the way in which the example was built.
using Origin = std::tuple<std::string, std::string>;

class Examples : public testing::TestWithParam<Origin> {
  protected:
    static Command example(const std::string& name) {
        const auto& [flavour, way] = GetParam();
        return {std::string(EXAMPLES_FOLDER) + "/" + flavour + "/" + way + "/" + name};
    }
};

INSTANTIATE_TEST_SUITE_P(Installed, Examples,
                         testing::Combine(testing::Values("static", "shared"),
                                          testing::Values("find_package", "pkg_config")),
                         [](const testing::TestParamInfo<Origin>& origin) {
                             return std::get<0>(origin.param) + "_" + std::get<1>(origin.param);
                         });

TEST_P(Examples, theProgramInCPrintsTheStatus) {
    const Bench bench;

    EXPECT_EQ(runCleanly(example("print_status")).output,
              "network: home\n"
              "encryption: WPA2 (PSK)\n"
              "signal levels: carrier 21, wifi 72\n"
              "address: 192.168.1.20\n");
}

// What an example does, wherever it was built.
class Example : public Examples {};

INSTANTIATE_TEST_SUITE_P(Installed, Example, testing::Values(Origin{"static", "find_package"}),
                         [](const auto&) { return "static_find_package"; });

TEST_P(Example, theProgramInCSaysThatNoServerPublishes) {
    const Result result = run(example("print_status"));

    EXPECT_EQ(result.status.code(), 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "no server publishes its state\n");
}

TEST_P(Example, theProgramInCppJoinsTheStrongestOpenNetwork) {
    Bench bench;

    EXPECT_EQ(runCleanly(example("join_strongest")).output,
              "in range: home, WPA2 (PSK), 72\n"
              "in range: office, WPA+WPA2 Enterprise (RADIUS), 58\n"
              "in range: guest, None, 35\n"
              "joined: guest\n");
    EXPECT_EQ(bench.frames(), (std::vector<std::string>{"10 RequestWifiList 0 \"\"",
                                                        "14 SetWifiConnection 8 \"guest,0,\""}));
}

TEST_P(Example, theServerTakesTheCommandOfARealClient) {
    ChildProcess server(example("serve_state"));
    ASSERT_TRUE(server.waitForOutput("published: home\n"));

    const std::string client = runCleanly(probe({"--setwifi", "bench"})).output;

    EXPECT_NE(client.find("Current wifi name is: home\nNow changing to bench\n"), std::string::npos)
        << client;
    EXPECT_NE(client.find("\nWifi name changed.\n"), std::string::npos) << client;
    ASSERT_TRUE(server.wait());
    EXPECT_EQ(server.wait()->code(), 0);
    EXPECT_EQ(server.output(), "published: home\npublished: bench\n");
}

TEST_P(Example, theClientInCppFindsNoListAtTheServerThatHasNone) {
    ChildProcess server(example("serve_state"));
    ASSERT_TRUE(server.waitForOutput("published: home\n"));

    const Result result = run(example("join_strongest"));

    EXPECT_EQ(result.status.code(), 1);
    EXPECT_EQ(result.errors, "no list of networks\n");
}

}  // namespace
