#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Vantric/ModemClient.h"
#include "tests/Vantric/LogTranscript.h"
#include "tests/support/Allocations.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/RawSegment.h"
#include "tests/support/Roles.h"

namespace {

using com_qel::Orvane::Vantric::ModemClient;
using com_qel::Orvane::Vantric::ModemStatus;
using com_qel::Orvane::Vantric::WifiInfo;
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
std::vector<Result> ofEachObject(Result (*look)(const std::string&)) {
    std::vector<Result> results(std::size(objects));
    std::transform(std::begin(objects), std::end(objects), results.begin(), look);
    return results;
}

std::vector<uint32_t> attachCounts() {
    return ofEachObject(attachCount);
}

std::vector<uint32_t> four(uint32_t count) {
    return std::vector<uint32_t>(4, count);
}

// Nobody can open a shared-memory object or semaphore under a name that is a directory's.
void obstruct(const std::string& name) {
    std::filesystem::remove("/dev/shm/" + name);
    std::filesystem::create_directory("/dev/shm/" + name);
}

void clearTheWay(const std::string& name) {
    std::filesystem::remove("/dev/shm/" + name);
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

// Fails twice, to begin with for another reason: a sanitizer needs descriptors for its first look
// at the objects involved.
const RoleRegistration connectorWithoutDescriptors("connectWithoutDescriptors", [](const auto&) {
    ModemClient client;
    const bool isConnectedPastTheObstacle = client.connect();
    rlimit usual = {};
    getrlimit(RLIMIT_NOFILE, &usual);
    const rlimit none = {0, usual.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    const bool isConnected = client.connect();
    setrlimit(RLIMIT_NOFILE, &usual);
    return isConnected || isConnectedPastTheObstacle ? 0 : 1;
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

TEST(ModemClientConnection, givesTheObjectsTheirSizes) {
    ModemClient client;
    ASSERT_TRUE(client.connect());
    EXPECT_EQ(segmentLength("ModemStateShm"), 153U);
    EXPECT_EQ(segmentLength("ModemStateEx"), 168U);
    EXPECT_EQ(segmentLength("ModemWifiList"), 4120U);
    EXPECT_EQ(segmentLength("ModemCommandsShm"), 4128U);
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

TEST(ModemClientConnection, leavesTheServersObjectsWhenDestroyedWhileConnected) {
    const PublishedServer server;
    {
        ModemClient client;
        ASSERT_TRUE(client.connect());
    }
    EXPECT_EQ(attachCounts(), four(1));
    EXPECT_EQ(attachedProducers(), 0U);
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

TEST(ModemClientConnection, failsEveryOperationOnceDisconnected) {
    PublishedServer server;
    ModemClient client;
    ASSERT_TRUE(client.connect());
    server.state.publish(freshState());
    server.extendedState.publish(someExtendedState(1));
    server.wifiList.publish(wifiListOf({10}, 1));
    int32_t number = -1;
    std::string text;
    ASSERT_TRUE(client.getHostname(text));
    client.disconnect();
    EXPECT_FALSE(client.getConnectivityType(number));
    EXPECT_FALSE(client.getWifiSSID(text));
    EXPECT_FALSE(client.getWifiPasswordAndEncryptionType(number, text));
    EXPECT_FALSE(client.getHostname(text));
    EXPECT_FALSE(client.getWifiConnectionState(text));
    EXPECT_FALSE(client.setWifiSSID("x"));
    std::vector<WifiInfo> list;
    EXPECT_FALSE(client.getWifiAvailableListBlocking(list, 10));
    ModemStatus status;
    EXPECT_FALSE(client.getModemStatusBlocking(status, 10));
    EXPECT_TRUE(server.takeFrames().empty());
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

TEST(ModemClientConnection, requestsNothingWithoutTheChannelThatAFailedConnectDidNotReach) {
    obstruct("ModemCommandsShm");
    ModemClient client;
    EXPECT_FALSE(client.connect());
    Vantric::ClientServer::SharedMemoryWifiList wifiList;
    wifiList.publish(wifiListOf({10}, 1));
    Vantric::ClientServer::SharedMemoryModemStateExtended extendedState;
    extendedState.publish(someExtendedState(1));
    const auto start = std::chrono::steady_clock::now();
    std::vector<WifiInfo> list;
    EXPECT_FALSE(client.getWifiAvailableListBlocking(list, 30));
    ModemStatus status;
    EXPECT_FALSE(client.getModemStatusBlocking(status, 30));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
}

TEST(ModemClientConnection, releasesWhatAFailedConnectHadMapped) {
    obstruct("ModemWifiList");
    {
        ModemClient client;
        ASSERT_FALSE(client.connect());
    }
    EXPECT_FALSE(segmentExists("ModemStateShm"));
    EXPECT_FALSE(segmentExists("ModemStateEx"));
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

TEST(ModemClientConnection, connectsAfterTheObstacleIsGone) {
    obstruct("ModemStateShm");
    ModemClient client;
    EXPECT_FALSE(client.connect());
    clearTheWay("ModemStateShm");
    EXPECT_TRUE(client.connect());
    EXPECT_EQ(attachCounts(), four(1));
}

TEST(ModemClientConnection, logsWhyItCannotConnect) {
    obstruct("ModemWifiList");
    const Result result = run(roleCommand("connect", {}, loggingFrom("error")));
    EXPECT_EQ(result.status->code(), 1);
    EXPECT_EQ(masked(result.output), connectionFailure("Invalid argument"));
}

TEST(ModemClientConnection, failsWhenNoDescriptorIsLeft) {
    obstruct("ModemStateShm");
    const Result result = run(roleCommand("connectWithoutDescriptors", {}, loggingFrom("error")));
    EXPECT_EQ(result.status->code(), 1) << result.errors;
    EXPECT_EQ(masked(result.output),
              connectionFailure("Invalid argument") +
                  errorRecord("MultiProcessLock", "MultiProcessLock: sem_open failed") +
                  connectionFailure("Too many open files"));
}

TEST(ModemClientConnection, logsNothingWhenItConnects) {
    const Result result = run(roleCommand("connect", {}, loggingFrom("trace")));
    EXPECT_EQ(result.status->code(), 0);
    EXPECT_EQ(result.output, "");
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

TEST(ModemClientConnection, logsALockThatCannotBeOpenedOnce) {
    obstruct("sem.ModemWifiListLock");
    const Result result = run(roleCommand("connect", {}, loggingFrom("error")));
    EXPECT_EQ(result.status->code(), 0);
    EXPECT_EQ(masked(result.output),
              errorRecord("MultiProcessLock", "MultiProcessLock: sem_open failed"));
    EXPECT_NE(result.output.find("MultiProcessLock|   56|"), std::string::npos);
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
