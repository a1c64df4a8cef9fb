// A server that is killed while it holds one of the eight locks: what clients meet, and what the
// next construction of the lock repairs.
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "Vantric/ModemClient.h"
#include "Vantric/Utils/MultiProcessLock.h"
#include "tests/support/LogTranscript.h"
#include "tests/support/Polling.h"
#include "tests/support/ProcessFacts.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/RawSegment.h"
#include "tests/support/RawSemaphore.h"
#include "tests/support/Roles.h"

namespace vantric_test {
namespace {

using Vantric::ModemClient;
using Vantric::ClientServer::MultiProcessLock;
using Vantric::ClientServer::SharedMemoryModemStateExtended;
using Vantric::ClientServer::SharedMemoryWifiList;

constexpr const char* lockSignal = "serverMayLock";

const std::vector<std::string> objects = {"ModemStateShm", "ModemStateEx", "ModemWifiList",
                                          "ModemCommandsShm"};

std::vector<std::string> locksEndingIn(const std::string& ending) {
    std::vector<std::string> locks = objects;
    for (std::string& lock : locks) {
        lock += ending;
    }
    return locks;
}

void expectCounts(uint32_t count) {
    for (const std::string& object : objects) {
        EXPECT_EQ(attachCount(object), count) << object;
    }
}

// Whether exactly the lock of that name is taken.
void expectTaken(const std::string& taken) {
    for (const char* ending : {"Lock", "ProviderLock"}) {
        for (const std::string& lock : locksEndingIn(ending)) {
            EXPECT_EQ(semaphoreValue(lock), lock == taken ? 0 : 1) << lock;
        }
    }
}

void report(const char* text) {
    std::puts(text);
    std::fflush(stdout);
}

// Publishes, and on the signal takes a lock and keeps it. arguments: name of the lock
const RoleRegistration dyingServer("dyingServer", [](const Arguments& arguments) {
    PublishedServer server;
    server.state.publish(freshState());
    server.extendedState.publish(someExtendedState(1));
    server.wifiList.publish(wifiListOf({7, 8}, 1));
    MultiProcessLock lock(arguments.at(0));
    report("published");
    if (!eventually([] { return segmentExists(lockSignal); })) {
        return 1;
    }
    lock.lock();
    report("held");
    while (true) {
        pause();
    }
    return 0;
});

// Reads all that is published and sends a command. arguments: none
const RoleRegistration freshClient("freshClient", [](const Arguments&) {
    ModemClient client;
    SharedMemoryModemStateExtended extended;
    SharedMemoryWifiList list;
    Vantric::ModemStateExtended extendedRecord = {};
    Vantric::WifiInfosList listRecord = {};
    std::string ssid;
    const bool isSound = client.connect() && client.getWifiSSID(ssid) && ssid == "home network" &&
                         extended.read(extendedRecord) && extendedRecord.wifiSignalLevel == 44 &&
                         list.read(listRecord) && listRecord.count == 2 &&
                         client.sendTextCommand("from a fresh client");
    return isSound ? 0 : 1;
});

// A client that was connected before the server died holding the lock of the parameter.
class DeadServer : public testing::TestWithParam<std::string> {
  protected:
    void SetUp() override {
        ChildProcess server(roleCommand("dyingServer", {GetParam()}));
        ASSERT_TRUE(server.waitForOutput("published"));
        ASSERT_TRUE(client_->connect());
        const RawSegment signal(lockSignal, 1);
        ASSERT_TRUE(server.waitForOutput("held"));
        server.sendSignal(SIGKILL);
        const auto status = server.wait();
        ASSERT_TRUE(status && status->signal() == SIGKILL);
    }

    // The client could not leave while the lock is taken.
    void TearDown() override { const MultiProcessLock construction(GetParam()); }

    // What the client does with the object whose contents the lock guards.
    void useObject() {
        const std::string& lock = GetParam();
        if (lock == "ModemStateShmLock") {
            std::string ssid;
            isUsed_ = client_->getWifiSSID(ssid) && ssid == "home network";
        } else if (lock == "ModemStateExLock") {
            Vantric::ModemStatus status = {};
            isUsed_ = !client_->getModemStatusBlocking(status, 0);  // no server answers
        } else if (lock == "ModemWifiListLock") {
            std::vector<Vantric::WifiInfo> list;
            isUsed_ = !client_->getWifiAvailableListBlocking(list, 0);  // no server answers
        } else {
            isUsed_ = client_->setConnectivityType(1);
        }
    }

    std::unique_ptr<ModemClient> client_ = std::make_unique<ModemClient>();
    bool isUsed_ = false;
};

class WithContentsLock : public DeadServer {};
class WithProviderLock : public DeadServer {};

TEST_P(DeadServer, aFreshClientReleasesTheLockAndDoesAWholeExchangeWithoutALogRecord) {
    expectTaken(GetParam());
    expectCounts(2);
    const Result result = run(roleCommand("freshClient", {}, loggingFrom("error")));
    EXPECT_EQ(result.status.raw, 0);
    EXPECT_EQ(result.output, "");
    expectTaken("none");
    expectCounts(2);
    PublishedServer nextServer;
    EXPECT_EQ(nextServer.takeFrames(), (Frames{{12, "from a fresh client"}}));
}

TEST_P(WithContentsLock, aConnectedClientWaitsUntilAConstructionReleasesTheLock) {
    const BackgroundAction use([this] { useObject(); });
    EXPECT_TRUE(use.blocks());
    { const MultiProcessLock construction(GetParam()); }
    ASSERT_TRUE(use.ends());
    EXPECT_TRUE(isUsed_);
    EXPECT_EQ(semaphoreValue(GetParam()), 1);
}

TEST_P(WithProviderLock, aConnectedClientGoesOn) {
    std::string ssid;
    EXPECT_TRUE(client_->getWifiSSID(ssid));
    EXPECT_EQ(ssid, "home network");
    EXPECT_TRUE(client_->setConnectivityType(1));
    EXPECT_EQ(semaphoreValue(GetParam()), 0);
}

TEST_P(WithProviderLock, aClientThatLeavesWaitsUntilAConstructionReleasesTheLock) {
    const BackgroundAction leave([this] { client_.reset(); });
    EXPECT_TRUE(leave.blocks());
    { const MultiProcessLock construction(GetParam()); }
    ASSERT_TRUE(leave.ends());
    expectCounts(1);
    EXPECT_EQ(semaphoreValue(GetParam()), 1);
}

std::string caseName(const testing::TestParamInfo<std::string>& info) {
    return info.param;
}

const auto contentsLocks = testing::ValuesIn(locksEndingIn("Lock"));
const auto providerLocks = testing::ValuesIn(locksEndingIn("ProviderLock"));
INSTANTIATE_TEST_SUITE_P(ContentsLock, DeadServer, contentsLocks, caseName);
INSTANTIATE_TEST_SUITE_P(ProviderLock, DeadServer, providerLocks, caseName);
INSTANTIATE_TEST_SUITE_P(DeadServer, WithContentsLock, contentsLocks, caseName);
INSTANTIATE_TEST_SUITE_P(DeadServer, WithProviderLock, providerLocks, caseName);

}  // namespace
}  // namespace vantric_test
