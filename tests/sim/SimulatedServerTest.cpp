#include <gtest/gtest.h>

#include "sim/SimulatedServer.h"
#include "tests/sim/ServerFixture.h"

namespace {

using namespace vantric_test;
using com_qel::Orvane::Vantric::ModemState;
using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemState;

TEST(SimulatedServer, stampsTheBasicStateWithTheWallClock) {
    ServerFixture server;
    EXPECT_LE(secondsSinceEpoch() - server.state()->timestamp, 10);
    EXPECT_GE(secondsSinceEpoch() - server.state()->timestamp, 0);
}

TEST(SimulatedServer, publishesTheBasicStateAgainAtEveryInterval) {
    ServerFixture server(R"({"intervals": {"publish": 50}})");
    const auto spoil = [&] { server.stateSegment.accessor().memory()->valid = 0; };
    for (int round = 0; round < 3; ++round) {
        spoil();
        server.advance(45ms);
        EXPECT_FALSE(server.state()) << round;
        server.advance(5ms);
        EXPECT_TRUE(server.state()) << round;
    }
}

TEST(SimulatedServer, skipsThePublicationsThatALongPauseMissed) {
    const vantric_sim::SteadyTime start(1h);
    vantric_sim::SimulatedServer server(vantric_sim::Scenario(), [](const std::string&) {});
    server.start(start);
    server.step(start + 100s);
    SharedMemoryModemState segment;
    ModemState state;
    segment.accessor().memory()->valid = 0;
    server.step(start + 100990ms);
    EXPECT_FALSE(segment.read(state));
    server.step(start + 101s);
    EXPECT_TRUE(segment.read(state));
}

TEST(SimulatedServer, reportsEveryFrameInOrderAtTheNextDraining) {
    ServerFixture server;
    server.advance(100ms);
    server.send(ModemCommand::SendText, "a\"b");
    server.send(ModemCommand::SendTextPair, "x,y");
    server.sendNumber(99, "?");
    server.advance(5ms);
    EXPECT_EQ(server.lines(), (std::vector<std::string>{R"(frame 12 SendText 3 "a\"b")",
                                                        R"(frame 13 SendTextPair 3 "x,y")",
                                                        R"(frame 99 Unknown 1 "?")"}));
}

TEST(SimulatedServer, keepsToItsOwnDrainInterval) {
    ServerFixture server(R"({"intervals": {"drain": 200}})");
    server.advance(5ms);
    server.send(ModemCommand::SendText, "a");
    server.advance(190ms);
    EXPECT_TRUE(server.lines().empty());
    server.advance(15ms);
    EXPECT_EQ(server.lines().size(), 1U);
}

TEST(SimulatedServer, takesTheLargestFrameThatFitsTheRing) {
    ServerFixture server;
    server.send(ModemCommand::SendText, std::string(4088, 'x'));
    server.advance(5ms);
    ASSERT_EQ(server.lines().size(), 1U);
    EXPECT_EQ(server.lines()[0], "frame 12 SendText 4088 \"" + std::string(4088, 'x') + "\"");
}

TEST(SimulatedServer, takesAFullRingOfSmallestFramesInOneDraining) {
    ServerFixture server;
    for (int count = 0; count < 512; ++count) {
        server.send(ModemCommand::SendText);
    }
    server.advance(5ms);
    EXPECT_EQ(server.lines().size(), 512U);
}

TEST(SimulatedServer, leavesItsRecordsToClientsThatAreStillAttached) {
    ServerFixture server;
    server.stopServer();
    EXPECT_TRUE(server.state());
}

TEST(SimulatedServer, doesTheEventsOfTimeZeroBeforeItPublishes) {
    // A first publication before the events would have shown the networks.
    ServerFixture server(R"({"timeline": [
        {"at": 0, "do": "set", "state": {"hostname": "early"}},
        {"at": 0, "do": "freeze", "segment": "networks"}]})");
    EXPECT_EQ(fieldText(server.state()->hostname), "early");
    EXPECT_FALSE(server.networks());
    EXPECT_TRUE(server.lines().empty());
}

TEST(SimulatedServer, startsBeforeItEndsOrVanishesAtTimeZero) {
    for (const std::string event : {R"("exit")", R"("vanish", "seconds": 1)"}) {
        ServerFixture server(R"({"timeline": [{"at": 0, "do": )" + event + "}]}");
        EXPECT_TRUE(server.state());
        EXPECT_TRUE(server.lines().empty());
        server.advance(5ms);
        EXPECT_EQ(server.lines().size(), 1U);
    }
}

TEST(SimulatedServer, reportsAndDoesEventsWhenTheyAreDue) {
    ServerFixture server(R"({"timeline": [
        {"at": 2, "do": "set", "state": {"hostname": "x"}, "extended": {"serverWord": 9}}]})");
    server.advance(1995ms);
    EXPECT_EQ(fieldText(server.state()->hostname), "modem");
    EXPECT_TRUE(server.lines().empty());
    server.advance(5ms);
    EXPECT_EQ(fieldText(server.state()->hostname), "x");
    EXPECT_EQ(int32_t(server.extended()->serverWord), 9);
    EXPECT_EQ(server.lines(), std::vector<std::string>{"event set"});
}

TEST(SimulatedServer, showsReplacedNetworksWithTheNextScan) {
    ServerFixture server(R"({"timeline": [
        {"at": 1, "do": "replaceNetworks", "networks": [{"ssid": "new"}]}]})");
    server.advance(2s);
    EXPECT_EQ(int32_t(server.networks()->count), 3);
    server.send(ModemCommand::RequestWifiList);
    server.advance(2s);
    ASSERT_EQ(int32_t(server.networks()->count), 1);
    EXPECT_EQ(fieldText(server.networks()->entries[0].ssid), "new");
}

TEST(SimulatedServer, endsWithTheExitEventAndDoesNothingAfterIt) {
    ServerFixture server(R"({"timeline": [{"at": 1, "do": "exit"}, {"at": 1, "do": "freeze"}]})");
    EXPECT_TRUE(server.advance(995ms));
    EXPECT_FALSE(server.advance(5ms));
    EXPECT_EQ(server.lines(), std::vector<std::string>{"event exit"});
}

}  // namespace
