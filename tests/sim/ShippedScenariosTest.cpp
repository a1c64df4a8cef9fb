// The scenarios in sim/scenarios. What most of them do is in the transcripts.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>

#include "tests/sim/ServerFixture.h"

namespace {

using namespace vantric_sim;
using namespace vantric_test;

std::filesystem::path folder() {
    return std::filesystem::path(SOURCE_FOLDER) / "sim/scenarios";
}

Scenario shipped(const std::string& name) {
    return readScenarioFile((folder() / (name + ".json")).string());
}

TEST(ShippedScenarios, allLoadAndBeginWithAPurposeOfTheirOwn) {
    std::set<std::string> purposes;
    for (const auto& entry : std::filesystem::directory_iterator(folder())) {
        EXPECT_NO_THROW(readScenarioFile(entry.path().string())) << entry;
        std::string line;
        std::ifstream stream(entry.path());
        std::getline(stream, line);
        EXPECT_EQ(line.rfind("// Purpose: ", 0), 0U) << entry;
        EXPECT_TRUE(purposes.insert(line).second) << entry;
    }
    EXPECT_GE(purposes.size(), 16U);
}

TEST(ShippedScenarios, showTheDefaultsAsTheyAre) {
    const Scenario written = shipped("default");
    const Scenario builtIn;
    EXPECT_EQ(std::memcmp(&written.state, &builtIn.state, sizeof(builtIn.state)), 0);
    EXPECT_EQ(std::memcmp(&written.extended, &builtIn.extended, sizeof(builtIn.extended)), 0);
    ASSERT_EQ(written.networks.size(), builtIn.networks.size());
    EXPECT_EQ(std::memcmp(written.networks.data(), builtIn.networks.data(),
                          builtIn.networks.size() * sizeof(builtIn.networks[0])),
              0);
    EXPECT_EQ(std::memcmp(&written.delays, &builtIn.delays, sizeof(builtIn.delays)), 0);
    EXPECT_EQ(std::memcmp(&written.intervals, &builtIn.intervals, sizeof(builtIn.intervals)), 0);
}

TEST(ShippedScenarios, loadAConfigurationLateAndForHalfAMinute) {
    ServerFixture server(shipped("long_configuration_load"));
    server.send(ModemCommand::SetConfig, "site.cfg");
    server.advance(900ms);
    EXPECT_TRUE(server.state());
    server.advance(29s);
    EXPECT_FALSE(server.state());
    server.advance(2s);
    ASSERT_TRUE(server.state());
    EXPECT_EQ(fieldText(server.state()->hostname), "site");
}

}  // namespace
