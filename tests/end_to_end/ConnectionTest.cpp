// What the program attaches to, and what stays attached when a command ends.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <regex>

#include "tests/end_to_end/Bench.h"
#include "tests/support/PublishedServer.h"

namespace {

using namespace vantric_test;

TEST(Connection, isMadeOnlyWhenACommandRuns) {
    const rlimit noCore = {0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    const std::vector<std::vector<std::string>> lines = {{},
                                                         {"-h", "--enablewifi"},
                                                         {"--help"},
                                                         {"--enablewif", "--statusCapi", ""},
                                                         {"--setwifi"},
                                                         {"--setConfig"},
                                                         {"--setConfigKeepWifi"}};
    for (const std::vector<std::string>& line : lines) {
        run(probe(line), commandPatience);
        EXPECT_TRUE(sharedMemoryNames().empty()) << testing::PrintToString(line);
    }
}

// Commands disconnect at their end, which leaves everything attached.
TEST(Connection, ofEveryCommandStaysAttached) {
    runCleanly(probe({"--availablewifi", "--forgetwifi", "--statuscapi"}));
    for (const char* name :
         {"ModemStateShm", "ModemStateEx", "ModemWifiList", "ModemCommandsShm"}) {
        EXPECT_EQ(attachCount(name), 3U) << name;
    }
    EXPECT_EQ(attachedProducers(), 3U);
}

TEST(Connection, thatFailsHalfwayReleasesNothingInTheCInterface) {
    std::filesystem::create_directory("/dev/shm/ModemCommandsShm");
    runCleanly(probe({"--statuscapi"}));
    EXPECT_EQ(attachCount("ModemStateShm"), 1U);
    EXPECT_EQ(attachCount("ModemStateEx"), 1U);
    EXPECT_EQ(attachCount("ModemWifiList"), 1U);
}

TEST(Connection, ofAKilledCommandDisturbsNeitherTheServerNorTheNextCommand) {
    Bench bench(R"({"timeline": [{"at": 0, "do": "stickSwitch"}]})");
    {
        ChildProcess command(probe({"--switchtowifi"}));
        ASSERT_TRUE(bench.simulator().waitForOutput("frame 5 "));
        command.sendSignal(SIGKILL);
        const auto status = command.wait();
        ASSERT_TRUE(status && status->signal() == SIGKILL);
    }
    EXPECT_EQ(std::regex_replace(runCleanly(probe({"--enablewifi"})).output, std::regex("[0-9]+us"),
                                 "#us"),
              "Client successfully connected.\nCurrent connectivity is: Carrier\n"
              "Now changing to Wifi\n---------------------------------\nTimings:\n"
              "setConnectivityType: #us\n\n");
    EXPECT_EQ(bench.frames(),
              std::vector<std::string>({"5 SwitchToWifi 0 \"\"", "5 SwitchToWifi 0 \"\""}));
}

}  // namespace
