#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>

#include "sim/ScenarioFile.h"
#include "tests/sim/ServerFixture.h"

namespace {

using namespace vantric_sim;
using namespace vantric_test;

std::filesystem::path folder() {
    return std::filesystem::path(SOURCE_FOLDER) / "sim/scenarios";
}

std::vector<std::filesystem::path> scenarioFiles() {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder())) {
        files.push_back(entry.path());
    }
    return files;
}

std::string contentOf(const std::string& name) {
    std::ifstream file(folder() / (name + ".json"));
    return {std::istreambuf_iterator<char>(file), {}};
}

Scenario shipped(const std::string& name) {
    return readScenarioFile((folder() / (name + ".json")).string());
}

TEST(ShippedScenarios, allLoad) {
    EXPECT_GE(scenarioFiles().size(), 16U);
    for (const auto& file : scenarioFiles()) {
        EXPECT_NO_THROW(readScenarioFile(file.string())) << file;
    }
}

TEST(ShippedScenarios, beginWithOnePurposeEach) {
    std::set<std::string> purposes;
    for (const auto& file : scenarioFiles()) {
        std::string line;
        std::ifstream stream(file);
        std::getline(stream, line);
        EXPECT_EQ(line.rfind("// Purpose: ", 0), 0U) << file;
        EXPECT_TRUE(purposes.insert(line).second) << file;
    }
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

TEST(ShippedScenarios, slowSwitchTakesTwentySeconds) {
    ServerFixture server(contentOf("slow_switch"));
    server.send(ModemCommand::SwitchToWifi);
    server.advance(19s);
    EXPECT_EQ(int32_t(server.state()->connectivityType), 2);
    server.advance(2s);
    EXPECT_EQ(int32_t(server.state()->connectivityType), 1);
}

TEST(ShippedScenarios, stuckSwitchNeverTakesEffect) {
    ServerFixture server(contentOf("stuck_switch"));
    server.send(ModemCommand::SwitchToWifi);
    server.advance(60s);
    EXPECT_EQ(int32_t(server.state()->connectivityType), 2);
}

TEST(ShippedScenarios, staleStateIsJustTooOld) {
    ServerFixture server(contentOf("stale_state"));
    EXPECT_GE(secondsSinceEpoch() - server.state()->timestamp, 301);
    EXPECT_LE(secondsSinceEpoch() - server.state()->timestamp, 310);
}

TEST(ShippedScenarios, invalidHeaderBecomesValidAfterTenSeconds) {
    ServerFixture server(contentOf("invalid_header"));
    server.advance(9s);
    EXPECT_FALSE(server.state());
    server.advance(2s);
    EXPECT_TRUE(server.state());
}

TEST(ShippedScenarios, wrongVersionHidesEverySegment) {
    ServerFixture server(contentOf("wrong_version"));
    EXPECT_FALSE(server.state());
    EXPECT_FALSE(server.extended());
    EXPECT_FALSE(server.networks());
}

TEST(ShippedScenarios, ignoredScanAnswersTheSecondRequest) {
    ServerFixture server(contentOf("ignored_scan"));
    const int32_t before = server.networks()->updateCounter;
    server.send(ModemCommand::RequestWifiList);
    server.advance(10s);
    EXPECT_EQ(int32_t(server.networks()->updateCounter), before);
    server.send(ModemCommand::RequestWifiList);
    server.advance(10s);
    EXPECT_NE(int32_t(server.networks()->updateCounter), before);
}

TEST(ShippedScenarios, listsHoldAsManyNetworksAsTheirNamesSay) {
    EXPECT_TRUE(shipped("empty_list").networks.empty());
    EXPECT_EQ(shipped("hundred_networks").networks.size(), 100U);
}

TEST(ShippedScenarios, longConfigurationLoadStartsLateAndTakesHalfAMinute) {
    ServerFixture server(contentOf("long_configuration_load"));
    server.send(ModemCommand::SetConfig, "site.cfg");
    server.advance(900ms);
    EXPECT_TRUE(server.state());
    server.advance(29s);
    EXPECT_FALSE(server.state());
    server.advance(2s);
    ASSERT_TRUE(server.state());
    EXPECT_EQ(fieldText(server.state()->hostname), "site");
}

TEST(ShippedScenarios, fullRingTakesNothingForAMinute) {
    ServerFixture server(contentOf("full_ring"));
    server.send(ModemCommand::SendText, "late");
    server.advance(59s);
    EXPECT_TRUE(server.lines().empty());
    server.advance(2s);
    EXPECT_EQ(server.lines().back(), R"(frame 12 SendText 4 "late")");
}

TEST(ShippedScenarios, deathComesWithTheLockOfTheBasicState) {
    const Scenario scenario = shipped("dies_holding_the_lock");
    ASSERT_EQ(scenario.timeline.size(), 1U);
    EXPECT_EQ(std::get<DieHoldingLock>(scenario.timeline[0].action).segment, Segment::State);
}

TEST(ShippedScenarios, vanishedServerComesBackAfterTenSeconds) {
    ServerFixture server(contentOf("vanishes_and_comes_back"));
    server.advance(14900ms);
    EXPECT_EQ(server.lines().back(), "event vanish");
    server.advance(200ms);
    EXPECT_EQ(server.lines().back(), "returned");
}

TEST(ShippedScenarios, awkwardNamesArePublishedByteForByte) {
    ServerFixture server(contentOf("awkward_names"));
    EXPECT_EQ(fieldText(server.state()->wifiSsid), "café, ground floor");
    EXPECT_EQ(fieldText(server.networks()->entries[3].ssid), "exactly thirty-two bytes of name");
    EXPECT_EQ(fieldText(server.networks()->entries[3].ssid).size(), 32U);
    EXPECT_EQ(fieldText(server.networks()->entries[5].ssid), "Gästezimmer 東京");
}

TEST(ShippedScenarios, equalLevelsAreEqual) {
    const auto networks = shipped("equal_levels").networks;
    ASSERT_GT(networks.size(), 1U);
    for (const WifiListEntry& network : networks) {
        EXPECT_EQ(int32_t(network.signalLevel), int32_t(networks[0].signalLevel));
    }
}

TEST(ShippedScenarios, noWifiConfiguredLooksForgotten) {
    ServerFixture server(contentOf("no_wifi_configured"));
    EXPECT_EQ(fieldText(server.state()->wifiPassword), "");
    EXPECT_EQ(int32_t(server.state()->wifiEncryptionType), 0);
    EXPECT_EQ(fieldText(server.state()->wifiConnectionState), "N/A");
}

}  // namespace
