#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <thread>

#include "client/Commands.h"
#include "tests/support/Allocations.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/Roles.h"

namespace {

using namespace std::chrono_literals;
using namespace vantric_test;

// Refreshes the extended state all the time, with texts that no string holds without memory.
class RefreshingServer {
  public:
    RefreshingServer() {
        publish(0);
        thread_ = std::thread([this] { refreshUntilStopped(); });
    }
    ~RefreshingServer() {
        isStopping_ = true;
        thread_.join();
    }
    RefreshingServer& operator=(RefreshingServer&&) = delete;

  private:
    void publish(int32_t counter) {
        auto state = someExtendedState(counter);
        state.wifiEncryptionType = 6;
        setText(state.wifiSsid, std::string(36, 's'));
        setText(state.ipv4Address, std::string(16, 'i'));
        setText(state.macAddress, std::string(20, 'm'));
        server_.extendedState.publish(state);
    }

    void refreshUntilStopped() {
        for (int32_t counter = 1; !isStopping_; ++counter) {
            publish(counter);
            std::this_thread::sleep_for(1ms);
        }
    }

    PublishedServer server_;
    std::atomic<bool> isStopping_{false};
    std::thread thread_;
};

// Runs the command again and again, each time with another allocation that fails, until none does.
const RoleRegistration statusWithoutMemory("statusWithoutMemory", [](const Arguments&) {
    const RefreshingServer server;
    bool hasFailed = true;
    for (std::size_t failing = 1; hasFailed; ++failing) {
        const Allocations allocations(failing);
        vantricprobe::printExtendedStatus();
        hasFailed = allocations.count() >= failing;
    }
    return 0;
});

TEST(CInterfaceCommands, theExtendedStatusSurvivesMemoryThatRunsOutAnywhere) {
    const Result result = run(roleCommand("statusWithoutMemory"));
    EXPECT_EQ(result.status.raw, 0) << result.errors;
    EXPECT_NE(result.output.find("\tSSID:         " + std::string(36, 's') +
                                 "\n"
                                 "\tEncryption:   WPA+WPA2 Enterprise (RADIUS)\n"
                                 "\tIPv4:         " +
                                 std::string(16, 'i') +
                                 "\n"
                                 "\tMAC Address:  " +
                                 std::string(20, 'm') + "\n\nStatus execution time: "),
              std::string::npos)
        << result.output;
}

TEST(CInterfaceCommands, keepWhatTheyMappedWhenTheyCannotConnect) {
    // No process can open an object whose name is a directory's.
    std::filesystem::create_directory("/dev/shm/ModemWifiList");
    vantricprobe::printExtendedStatus();
    EXPECT_EQ(attachCount("ModemStateShm"), 1U);
}

}  // namespace
