// Clients that are killed at any point. A dead client never detaches and may leave locks taken;
// the next client's construction repairs the locks, and the exchange goes on.
//
// Opening a lock releases it, even one that another process holds. So while a client connects,
// this server rests; while it publishes and takes commands, the client only uses what it has.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <csignal>
#include <string>

#include "Vantric/ModemClient.h"
#include "tests/soak/Workers.h"
#include "tests/support/Polling.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/RawSemaphore.h"

namespace vantric_soak {
namespace {

using com_qel::Orvane::Vantric::ModemClient;
using vantric_test::PublishedServer;
using Clock = std::chrono::steady_clock;

constexpr int fewestKills = 50;
constexpr uint32_t longestLife = 2000;  // microseconds

struct VictimArea {
    std::atomic<bool> isConnected{false};
};

void connectForever(VictimArea& area) {
    while (true) {
        ModemClient client;
        require(client.connect(), "a client cannot connect");
        area.isConnected = true;
    }
}

void exchangeForever(VictimArea& area) {
    ModemClient client;
    require(client.connect(), "a client cannot connect");
    area.isConnected = true;
    while (true) {
        std::string text;
        client.getHostname(text);
        client.setWifiSSID("an unimportant name");
    }
}

// Starts a client, kills it some time after its first connection, and calls `meanwhile` until then.
template <class Meanwhile>
void killOne(void (*behave)(VictimArea& area), uint32_t round, Meanwhile meanwhile) {
    const SharedArea<VictimArea> area;
    const pid_t client = startProcess([&] { behave(*area); });
    EXPECT_TRUE(vantric_test::eventually([&] { return area->isConnected.load(); }));
    const auto end = Clock::now() + std::chrono::microseconds(mixed(round) % longestLife);
    while (Clock::now() < end) {
        meanwhile();
    }
    kill(client, SIGKILL);
    int status = 0;
    ASSERT_EQ(waitpid(client, &status, 0), client);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the client ended by itself";
}

void expectAllLocksFree() {
    for (const std::string object :
         {"ModemStateShm", "ModemStateEx", "ModemWifiList", "ModemCommandsShm"}) {
        EXPECT_EQ(vantric_test::semaphoreValue(object + "Lock"), 1) << object;
        EXPECT_EQ(vantric_test::semaphoreValue(object + "ProviderLock"), 1) << object;
    }
}

void expectExchangeWithFreshClient(PublishedServer& server, uint32_t round) {
    ModemClient fresh;
    ASSERT_TRUE(fresh.connect());
    expectAllLocksFree();
    server.publishAt(vantric_test::secondsNow());
    std::string hostname;
    EXPECT_TRUE(fresh.getHostname(hostname));
    EXPECT_EQ(hostname, com_qel::Orvane::Vantric::fieldText(vantric_test::freshState().hostname));
    server.takeFrames();
    const std::string text = "round " + std::to_string(round);
    EXPECT_TRUE(fresh.sendTextCommand(text));
    const auto frames = server.takeFrames();
    ASSERT_EQ(frames.size(), 1U);
    EXPECT_EQ(frames[0].payload, text);
}

template <class Meanwhile>
void killAndStartAfresh(PublishedServer& server, void (*behave)(VictimArea& area),
                        Meanwhile meanwhile) {
    server.publishAt(vantric_test::secondsNow());
    const auto end = Clock::now() + workingTime();
    for (uint32_t round = 0; round < fewestKills || Clock::now() < end; ++round) {
        killOne(behave, round, meanwhile);
        expectExchangeWithFreshClient(server, round);
        if (testing::Test::HasFailure()) {
            FAIL() << "in round " << round;
        }
    }
}

TEST(KilledClients, leaveWorkingLocksWhenTheyDieConnecting) {
    PublishedServer server;
    killAndStartAfresh(server, connectForever, [] {});
}

TEST(KilledClients, leaveAWorkingExchangeWhenTheyDieInTheMiddleOfIt) {
    PublishedServer server;
    killAndStartAfresh(server, exchangeForever, [&server] {
        server.publishAt(vantric_test::secondsNow());
        server.takeFrames();
    });
}

}  // namespace
}  // namespace vantric_soak
