// The faults of a timeline, as clients see them.
#include <gtest/gtest.h>

#include "sim/Faults.h"
#include "tests/sim/ServerFixture.h"

namespace {

using namespace vantric_test;

std::string timeline(const std::string& events) {
    return "{\"timeline\": [" + events + "]}";
}

int32_t scanCounterAfterRequest(ServerFixture& server) {
    server.send(ModemCommand::RequestWifiList);
    server.advance(2s);
    return server.networks()->updateCounter;
}

TEST(Faults, ignoreEveryFrameOfACommandButReportIt) {
    ServerFixture server(timeline(R"({"at": 0, "do": "ignoreCommand", "command": 10})"));
    const int32_t before = server.networks()->updateCounter;
    server.send(ModemCommand::SwitchToWifi);
    EXPECT_EQ(scanCounterAfterRequest(server), before);
    EXPECT_EQ(scanCounterAfterRequest(server), before);
    EXPECT_EQ(server.lines().size(), 3U);
    EXPECT_EQ(server.lines()[1], R"(frame 10 RequestWifiList 0 "")");
    EXPECT_EQ(int32_t(server.state()->connectivityType), 1);
}

TEST(Faults, ignoreTheGivenNumberOfFrames) {
    ServerFixture server(
        timeline(R"({"at": 0, "do": "ignoreCommand", "command": 10, "frames": 2})"));
    const int32_t before = server.networks()->updateCounter;
    EXPECT_EQ(scanCounterAfterRequest(server), before);
    EXPECT_EQ(scanCounterAfterRequest(server), before);
    EXPECT_NE(scanCounterAfterRequest(server), before);
}

TEST(Faults, ageTimeStampsAtOnceAndFromThenOn) {
    ServerFixture server(timeline(R"({"at": 1, "do": "ageTimestamps", "seconds": 500})"));
    server.advance(995ms);
    EXPECT_LE(secondsSinceEpoch() - server.state()->timestamp, 10);
    server.advance(5ms);
    EXPECT_GE(secondsSinceEpoch() - server.state()->timestamp, 500);
    server.advance(5s);
    EXPECT_GE(secondsSinceEpoch() - server.state()->timestamp, 500);
    EXPECT_LE(secondsSinceEpoch() - server.state()->timestamp, 510);
}

TEST(Faults, freezeOneSegment) {
    ServerFixture server(timeline(R"({"at": 1, "do": "freeze", "segment": "state"})"));
    server.advance(1s);
    server.stateSegment.accessor().memory()->valid = 0;
    server.send(ModemCommand::RequestModemStatus);
    server.advance(5s);
    EXPECT_FALSE(server.state());
    EXPECT_EQ(int32_t(server.extended()->updateCounter), 2);
}

TEST(Faults, freezeAllSegments) {
    ServerFixture server(timeline(R"({"at": 1, "do": "freeze"})"));
    server.advance(1s);
    const int32_t scans = server.networks()->updateCounter;
    server.send(ModemCommand::SwitchToWifi);
    server.send(ModemCommand::RequestModemStatus);
    server.send(ModemCommand::RequestWifiList);
    server.advance(5s);
    EXPECT_EQ(int32_t(server.state()->connectivityType), 2);
    EXPECT_EQ(int32_t(server.extended()->updateCounter), 1);
    EXPECT_EQ(int32_t(server.networks()->updateCounter), scans);
    EXPECT_EQ(server.lines().size(), 4U);
}

TEST(Faults, invalidateTheHeaderOfOneSegment) {
    for (const char* segment : {"state", "extended", "networks"}) {
        ServerFixture server(timeline(R"({"at": 1, "do": "invalidateHeader", "segment": ")" +
                                      std::string(segment) + R"("})"));
        EXPECT_TRUE(server.state() && server.extended() && server.networks());
        server.advance(10s);
        EXPECT_EQ(server.state().has_value(), segment != std::string("state"));
        EXPECT_EQ(server.extended().has_value(), segment != std::string("extended"));
        EXPECT_EQ(server.networks().has_value(), segment != std::string("networks"));
    }
}

TEST(Faults, changeTheVersionOfOneSegment) {
    ServerFixture server(
        timeline(R"({"at": 1, "do": "changeVersion", "segment": "extended", "version": 7})"));
    server.advance(1s);
    EXPECT_FALSE(server.extended());
    EXPECT_EQ(uint32_t(server.extendedSegment.accessor().memory()->version), 7U);
    EXPECT_EQ(server.extendedSegment.accessor().memory()->valid, 1);
    EXPECT_TRUE(server.state() && server.networks());
}

TEST(Faults, endWithRestoreAndPublishAtOnce) {
    ServerFixture server(timeline(R"(
        {"at": 0, "do": "invalidateHeader", "segment": "state"},
        {"at": 0, "do": "changeVersion", "segment": "extended"},
        {"at": 0, "do": "freeze", "segment": "networks"},
        {"at": 0, "do": "ageTimestamps", "seconds": 1000},
        {"at": 0, "do": "ignoreCommand", "command": 10},
        {"at": 0, "do": "stickSwitch"},
        {"at": 0, "do": "stopDraining"},
        {"at": 1, "do": "restore"})"));
    EXPECT_FALSE(server.state() || server.extended() || server.networks());
    server.advance(1s);
    ASSERT_TRUE(server.state() && server.extended() && server.networks());
    EXPECT_LE(secondsSinceEpoch() - server.state()->timestamp, 10);
    const int32_t before = server.networks()->updateCounter;
    server.send(ModemCommand::SwitchToWifi);
    EXPECT_NE(scanCounterAfterRequest(server), before);
    server.advance(1s);
    EXPECT_EQ(int32_t(server.state()->connectivityType), 1);
}

TEST(Faults, takeNoCommandsWhileVanishedAndForgetThoseInProgress) {
    ServerFixture server(timeline(R"({"at": 1, "do": "vanish", "seconds": 5})"));
    server.advance(500ms);
    server.send(ModemCommand::SwitchToWifi);  // takes effect after two seconds
    server.send(ModemCommand::SetConfig, "north.cfg");
    server.advance(1s);
    server.send(ModemCommand::SendText, "waits");
    server.advance(4s);
    EXPECT_EQ(server.lines().back(), "event vanish");
    server.advance(1s);
    EXPECT_EQ(server.lines().back(), R"(frame 12 SendText 5 "waits")");
    server.advance(10s);
    ASSERT_TRUE(server.state());
    EXPECT_EQ(int32_t(server.state()->connectivityType), 2);
    EXPECT_EQ(fieldText(server.state()->hostname), "modem");
}

TEST(Faults, rememberChangesMadeWhileVanished) {
    ServerFixture server(timeline(R"({"at": 1, "do": "vanish", "seconds": 5},
                                     {"at": 2, "do": "set", "state": {"hostname": "new"}})"));
    server.advance(3s);
    EXPECT_EQ(fieldText(server.state()->hostname), "modem");
    server.advance(4s);
    EXPECT_EQ(fieldText(server.state()->hostname), "new");
}

TEST(Faults, endTheServerEvenWhileItHasVanished) {
    ServerFixture server(
        timeline(R"({"at": 1, "do": "vanish", "seconds": 60}, {"at": 2, "do": "exit"})"));
    EXPECT_FALSE(server.advance(3s));
}

}  // namespace
