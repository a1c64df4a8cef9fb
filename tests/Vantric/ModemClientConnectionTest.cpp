#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Vantric/ModemClient.h"
#include "tests/support/Allocations.h"
#include "tests/support/LogTranscript.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/RawSegment.h"
#include "tests/support/Roles.h"
#include "tests/support/SemaphoreCalls.h"

namespace {

using namespace com_qel::Orvane::Vantric;
using namespace vantric_test;

constexpr const char* objects[] = {"ModemCommandsShm", "ModemStateEx", "ModemStateShm",
                                   "ModemWifiList"};
constexpr const char* semaphores[] = {
    "sem.ModemCommandsShmLock", "sem.ModemCommandsShmProviderLock",
    "sem.ModemStateExLock",     "sem.ModemStateExProviderLock",
    "sem.ModemStateShmLock",    "sem.ModemStateShmProviderLock",
    "sem.ModemWifiListLock",    "sem.ModemWifiListProviderLock"};

std::vector<std::string> allSemaphores() {
    return {std::begin(semaphores), std::end(semaphores)};
}

std::vector<std::string> allObjectsAndSemaphores() {
    std::vector<std::string> names(std::begin(objects), std::end(objects));
    names.insert(names.end(), std::begin(semaphores), std::end(semaphores));
    return names;
}

template <class Result>
std::vector<Result> ofEachObject(Result (*query)(const std::string&)) {
    std::vector<Result> results(std::size(objects));
    std::transform(std::begin(objects), std::end(objects), results.begin(), query);
    return results;
}

std::vector<uint32_t> attachCounts() {
    return ofEachObject(attachCount);
}

std::string existingObjects() {
    std::string names;
    for (const char* name : objects) {
        names += segmentExists(name) ? std::string(name) + " " : "";
    }
    return names;
}

std::vector<uint32_t> four(uint32_t count) {
    return std::vector<uint32_t>(4, count);
}

// No process can open an object or semaphore whose name is a directory's.
void obstruct(const std::string& name) {
    std::filesystem::remove("/dev/shm/" + name);
    std::filesystem::create_directory("/dev/shm/" + name);
}

std::string connectionFailure(const std::string& systemText) {
    return errorRecord("ModemClient",
                       "Failed to connect to shared memory, error: Failed to open shared mem file, "
                       "error: " +
                           systemText);
}

const RoleRegistration connector("connect", [](const auto&) {
    ModemClient client;
    return client.connect() ? 0 : 1;
});

}  // namespace

TEST(ModemClientConnection, touchesNothingBeforeConnecting) {
    const ModemClient client;
    EXPECT_TRUE(sharedMemoryNames().empty());
}

TEST(ModemClientConnection, connectsWithoutAServerByCreatingWhatIsMissing) {
    ModemClient client;
    EXPECT_TRUE(client.connect());
    EXPECT_EQ(sharedMemoryNames(), allObjectsAndSemaphores());
    EXPECT_EQ(attachCounts(), four(1));
}

TEST(ModemClientConnection, attachesToTheChannelAsAProducer) {
    const PublishedServer server;
    ModemClient client;
    ASSERT_TRUE(client.connect());
    EXPECT_EQ(attachedProducers(), 1U);
    EXPECT_EQ(attachCounts(), four(2));
}

TEST(ModemClientConnection, releasesEverythingWhenDestroyedWhileConnected) {
    {
        ModemClient client;
        ASSERT_TRUE(client.connect());
    }
    EXPECT_EQ(sharedMemoryNames(), allSemaphores());
}

// Each part waits for a lock before it removes its object.
TEST(ModemClientConnection, releasesTheChannelThenTheListTheExtendedStateAndTheState) {
    std::vector<std::string> seen;
    {
        ModemClient client;
        ASSERT_TRUE(client.connect());
        observeSemaphoreCalls([&](SemaphoreMoment moment, const sem_t*) {
            if (moment == SemaphoreMoment::AboutToWait) {
                seen.push_back(existingObjects());
            }
        });
    }
    observeSemaphoreCalls(nullptr);
    seen.erase(std::unique(seen.begin(), seen.end()), seen.end());
    EXPECT_EQ(seen, (std::vector<std::string>{
                        "ModemCommandsShm ModemStateEx ModemStateShm ModemWifiList ",
                        "ModemStateEx ModemStateShm ModemWifiList ", "ModemStateEx ModemStateShm ",
                        "ModemStateShm "}));
}

TEST(ModemClientConnection, disconnectsAtAnyTime) {
    ModemClient client;
    EXPECT_TRUE(client.disconnect());
    ASSERT_TRUE(client.connect());
    EXPECT_TRUE(client.disconnect());
    EXPECT_TRUE(client.disconnect());
}

TEST(ModemClientConnection, releasesNothingWhenDisconnectedAndDestroyed) {
    {
        ModemClient client;
        ASSERT_TRUE(client.connect());
        client.disconnect();
        EXPECT_EQ(attachCounts(), four(1));
        EXPECT_EQ(attachedProducers(), 1U);
    }
    EXPECT_EQ(sharedMemoryNames(), allObjectsAndSemaphores());
    EXPECT_EQ(attachCounts(), four(1));
    EXPECT_EQ(attachedProducers(), 1U);
}

TEST(ModemClientConnection, attachesAnewAfterDisconnecting) {
    ModemClient client;
    ASSERT_TRUE(client.connect());
    client.disconnect();
    ASSERT_TRUE(client.connect());
    EXPECT_EQ(attachCounts(), four(2));
    EXPECT_EQ(attachedProducers(), 2U);
}

TEST(ModemClientConnection, replacesItsAttachmentsWhenItConnectsAgain) {
    const PublishedServer server;
    ModemClient client;
    ASSERT_TRUE(client.connect());
    ASSERT_TRUE(client.connect());
    EXPECT_EQ(attachCounts(), four(2));
    EXPECT_EQ(attachedProducers(), 1U);
}

// Were the old attachments released before the new ones are made, the last user would remove each
// object, and the first one would zero it.
TEST(ModemClientConnection, keepsTheObjectsAndTheirContentsWhenItAloneConnectsAgain) {
    ModemClient client;
    {
        PublishedServer server;
        ASSERT_TRUE(client.connect());
        server.state.publish(freshState());
    }
    ASSERT_EQ(attachCounts(), four(1));
    const std::vector<ino_t> identities = ofEachObject(segmentInode);
    ASSERT_TRUE(client.connect());
    EXPECT_EQ(attachCounts(), four(1));
    EXPECT_EQ(ofEachObject(segmentInode), identities);
    std::string hostname;
    EXPECT_TRUE(client.getHostname(hostname));
    EXPECT_EQ(hostname, "modem-17");
}

TEST(ModemClientConnection, keepsUnreadCommandsWhenItConnectsAgain) {
    PublishedServer server;
    ModemClient client;
    ASSERT_TRUE(client.connect());
    client.setWifiSSID("before");
    ASSERT_TRUE(client.connect());
    client.setWifiSSID("after");
    EXPECT_EQ(server.takeFrames(), (Frames{{7, "before"}, {7, "after"}}));
}

TEST(ModemClientConnection, usesWhatAFailedConnectHadMappedSoFar) {
    obstruct("ModemWifiList");
    ModemClient client;
    EXPECT_FALSE(client.connect());
    EXPECT_EQ(attachCount("ModemStateShm"), 1U);
    EXPECT_EQ(attachCount("ModemStateEx"), 1U);
    EXPECT_FALSE(segmentExists("ModemCommandsShm"));

    Vantric::ClientServer::SharedMemoryModemState state;
    state.publish(freshState());
    std::string hostname;
    EXPECT_TRUE(client.getHostname(hostname));
    EXPECT_EQ(hostname, "modem-17");
    EXPECT_FALSE(client.setWifiSSID("x"));
    std::vector<WifiInfo> list;
    EXPECT_FALSE(client.getWifiAvailableListBlocking(list, 10));
}

TEST(ModemClientConnection, mapsTheStateBeforeTheExtendedStateAndTheListAfterIt) {
    obstruct("ModemStateEx");
    ModemClient client;
    EXPECT_FALSE(client.connect());
    EXPECT_EQ(attachCount("ModemStateShm"), 1U);
    EXPECT_FALSE(segmentExists("ModemWifiList"));
}

TEST(ModemClientConnection, requestsNothingWithoutTheChannelThatAFailedConnectDidNotReach) {
    obstruct("ModemCommandsShm");
    ModemClient client;
    EXPECT_FALSE(client.connect());
    Vantric::ClientServer::SharedMemoryWifiList wifiList;
    wifiList.publish(wifiListOf({10}, 1));
    const auto start = std::chrono::steady_clock::now();
    std::vector<WifiInfo> list;
    EXPECT_FALSE(client.getWifiAvailableListBlocking(list, 30));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
}

TEST(ModemClientConnection, keepsTheEarlierHandlesThatAFailedReconnectDidNotReach) {
    std::optional<PublishedServer> server(std::in_place);
    ModemClient client;
    ASSERT_TRUE(client.connect());
    obstruct("ModemWifiList");
    EXPECT_FALSE(client.connect());
    EXPECT_EQ(attachedProducers(), 1U);

    server->state.publish(freshState());
    server->wifiList.publish(wifiListOf({10}, 1));
    server->answer([&](const Frame&) { server->wifiList.publish(wifiListOf({30, 20}, 2)); });
    std::vector<WifiInfo> list;
    EXPECT_TRUE(client.getWifiAvailableListBlocking(list, 30));
    EXPECT_EQ(list.size(), 2U);
    std::string hostname;
    EXPECT_TRUE(client.getHostname(hostname));
    EXPECT_EQ(server->takeFrames(), (Frames{{10, ""}}));
}

TEST(ModemClientConnection, logsWhyItCannotConnect) {
    obstruct("ModemWifiList");
    const Result result = run(roleCommand("connect", {}, loggingFrom("error")));
    EXPECT_EQ(result.status.code(), 1);
    EXPECT_EQ(masked(result.output), connectionFailure("Invalid argument"));
}

TEST(ModemClientConnection, connectsWithALockThatCannotBeOpened) {
    obstruct("sem.ModemStateShmLock");
    PublishedServer server;
    ModemClient client;
    EXPECT_TRUE(client.connect());
    server.state.publish(freshState());
    std::string hostname;
    EXPECT_TRUE(client.getHostname(hostname));
    EXPECT_EQ(hostname, "modem-17");
}

TEST(ModemClientConnection, failsWheneverMemoryRunsOutAndLeavesNoAttachmentBehind) {
    {
        ModemClient client;
        std::size_t failing = 0;
        bool isConnected = false;
        while (!isConnected) {
            const Allocations allocations(++failing);
            isConnected = client.connect();
        }
        EXPECT_GT(failing, 10U);
        EXPECT_EQ(attachCounts(), four(1));
    }
    EXPECT_EQ(sharedMemoryNames(), allSemaphores());
}
