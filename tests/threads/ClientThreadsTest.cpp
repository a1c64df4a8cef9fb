// One client in each of several threads.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <string>
#include <vector>

#include "Vantric/ModemClient.h"
#include "Vantric/ModemClientC.h"
#include "tests/CoreMisc/LogTestSupport.h"
#include "tests/support/PublishedServer.h"
#include "tests/threads/ThreadGroup.h"

using com_qel::Orvane::Vantric::ModemClient;
using namespace vantric_test;

namespace {

constexpr std::size_t clientCount = 4;
constexpr int commandsPerThread = 50;  // those of all threads fit into the command channel

std::string networkName(int thread, int command) {
    return std::to_string(thread) + " " + std::to_string(command);
}

// The result of a role is the number of calls that did not end as they should. The clients connect
// before the threads start: connecting releases every lock, also one that another client holds.
const RoleRegistration usesAClientPerThread("usesAClientPerThread", [](const Arguments&) {
    std::array<ModemClient, clientCount> clients;
    std::atomic<int> surprises{0};
    for (ModemClient& client : clients) {
        surprises += client.connect() ? 0 : 1;
    }
    inThreads(clientCount, [&](int thread) {
        ModemClient& client = clients.at(static_cast<std::size_t>(thread));
        std::string hostname;
        for (int command = 0; command < commandsPerThread; ++command) {
            surprises += client.getHostname(hostname) ? 1 : 0;
            surprises += client.setWifiSSID(networkName(thread, command)) ? 0 : 1;
        }
    });
    return std::min(surprises.load(), 100);
});

const RoleRegistration usesAHandlePerThread("usesAHandlePerThread", [](const Arguments&) {
    std::atomic<int> surprises{0};
    inThreads(clientCount, [&](int) {
        char name[40] = "";
        uint32_t size = sizeof(name);
        ModemClientHandle handle = modemClientCreate();
        surprises += modemClientConnect(handle) ? 0 : 1;
        surprises += modemClientGetWifiSSID(handle, name, &size) ? 1 : 0;
        surprises += modemClientSetWifiConnectionBlocking(handle, "", 0, "", 0) ? 1 : 0;
        modemClientDisconnect(handle);
        modemClientDestroy(handle);
    });
    return surprises.load();
});

// Runs a role while the state is stale.
void expectRecords(const char* role, std::size_t count, const char* message) {
    const TemporaryFolder folder;
    const Result result = runRoleWith({{"VRAX_LOG_LEVEL", "error"},
                                       {"VRAX_LOG_TYPE", "text_file"},
                                       {"VRAX_LOG_NAME", folder / "log"}},
                                      role);
    EXPECT_EQ(result.status.code(), 0) << result.errors;
    const auto records = recordsIn(readFile(folder / "log"));
    EXPECT_EQ(records.size(), count);
    for (const std::string& record : records) {
        EXPECT_NE(record.find(message), std::string::npos) << record;
    }
}

}  // namespace

TEST(ClientThreads, logTheirFailuresAndSendTheirCommandsWithAClientEach) {
    PublishedServer server;
    server.publishAt(0);
    expectRecords("usesAClientPerThread", clientCount * commandsPerThread,
                  "SharedMemoryModemState is stale.");
    std::vector<std::string> received;
    for (const Frame& frame : server.takeFrames()) {
        EXPECT_EQ(frame.command, 7U);
        received.push_back(frame.payload);
    }
    std::vector<std::string> sent;
    for (int thread = 0; thread < static_cast<int>(clientCount); ++thread) {
        for (int command = 0; command < commandsPerThread; ++command) {
            sent.push_back(networkName(thread, command));
        }
    }
    std::sort(received.begin(), received.end());
    std::sort(sent.begin(), sent.end());
    EXPECT_EQ(received, sent);
}

TEST(ClientThreads, connectLogAFailureAndDisconnectWithAHandleEach) {
    PublishedServer server;
    server.publishAt(0);
    expectRecords("usesAHandlePerThread", clientCount, "failed to forget current wifi settings");
}
