// Foreign bytes in the state segments: the program prints what it can and never crashes.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <climits>
#include <csignal>
#include <filesystem>
#include <fstream>

#include "tests/end_to_end/Bench.h"
#include "tests/end_to_end/HeldRequest.h"
#include "tests/end_to_end/Transcript.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/RawSemaphore.h"

namespace {

using vantric_test::alwaysFresh;
using vantric_test::Bench;
using vantric_test::ChildProcess;
using vantric_test::Frame;
using vantric_test::freshState;
using vantric_test::probe;
using vantric_test::PublishedServer;
using vantric_test::setText;
using vantric_test::someExtendedState;
using vantric_test::timingsBlock;
using vantric_test::transcript;
using vantric_test::wifiListOf;

constexpr const char* connected = "Client successfully connected.\n";

std::string changingAtOnce() {
    return std::string(connected) + "Current connectivity is: Carrier\nNow changing to Wifi" +
           timingsBlock({"setConnectivityType: #us"});
}

std::string listTimings() {
    return timingsBlock({"getWifiAvailableListBlocking: #ms"});
}

// The output of the scan when the server answers it with `list`.
std::string scanTranscript(const vantric_test::Vantric::WifiInfosList& list) {
    PublishedServer server;
    server.wifiList.publish(wifiListOf({}, list.updateCounter - 1));
    ChildProcess command(probe({"--availablewifi"}));
    EXPECT_TRUE(command.waitForOutput(connected));
    server.answer([&](const Frame&) { server.wifiList.publish(list); });
    const auto status = command.wait();
    EXPECT_TRUE(status && status->code() == 0);
    EXPECT_EQ(command.errors(), "");
    return vantric_test::masked(command.output());
}

TEST(HostileMemory, textsOfTheStateEndWithTheirField) {
    PublishedServer server;
    vantric_test::Vantric::ModemState state = freshState();
    const std::string ssid(sizeof(state.wifiSsid), 's');
    const std::string hostname(sizeof(state.hostname), 'h');
    setText(state.wifiSsid, ssid);
    setText(state.wifiPassword, std::string(sizeof(state.wifiPassword), 'p'));
    setText(state.hostname, hostname);
    setText(state.wifiConnectionState, std::string(sizeof(state.wifiConnectionState), 'c'));
    server.state.publish(alwaysFresh(state));
    EXPECT_EQ(transcript(probe({"--setConfigKeepWifi", "a.cfg"}, 10)),
              connected + ("Current config name is: " + hostname) + "\nNow changing to a.cfg\n." +
                  timingsBlock({"setConfig: #us", "modem config change: #sec"}));
    EXPECT_EQ(server.takeFrames(),
              vantric_test::Frames({{9, "a.cfg"}, {7, ssid}, {8, "3," + std::string(32, 'p')}}));
}

TEST(HostileMemory, textsOfTheStatusEndWithTheirField) {
    PublishedServer server;
    vantric_test::Vantric::ModemStateExtended status = someExtendedState(1);
    const std::string ssid(sizeof(status.wifiSsid), 's');
    const std::string address(sizeof(status.ipv4Address), '4');
    const std::string macAddress(sizeof(status.macAddress), 'm');
    setText(status.wifiSsid, ssid);
    setText(status.wifiEncryptionName, std::string(sizeof(status.wifiEncryptionName), 'e'));
    setText(status.ipv4Address, address);
    setText(status.macAddress, macAddress);
    server.extendedState.publish(status);
    ChildProcess command(probe({"--availablewifi", "--statuscapi"}));
    ASSERT_TRUE(command.waitForOutput("ms\n"));
    status.updateCounter = INT_MIN;
    server.answer([&](const Frame&) { server.extendedState.publish(status); });
    const auto end = command.wait();
    EXPECT_TRUE(end && end->code() == 0);
    EXPECT_EQ(vantric_test::startingAt(vantric_test::masked(command.output()), "Carrier:"),
              "Carrier:\n"
              "\tSignal level: -71\n"
              "Wifi:\n"
              "\tSignal level: 44\n"
              "\tSSID:         " +
                  ssid + "\n\tEncryption:   WPA2 (PSK)\n\tIPv4:         " + address +
                  "\n\tMAC Address:  " + macAddress + "\n\nStatus execution time: #ms.\n");
}

TEST(HostileMemory, moreNetworksThanTheListHoldsAreCutOff) {
    vantric_test::Vantric::WifiInfosList list = wifiListOf(std::vector<int32_t>(100, 7), 5);
    for (const int32_t count : {101, 4'096, INT_MAX}) {
        list.count = count;
        const std::string output = scanTranscript(list);
        EXPECT_EQ(vantric_test::countOf(output, "\t"), 100U) << output;
        EXPECT_EQ(vantric_test::countOf(output, "), 7\n"), 100U) << output;
    }
}

TEST(HostileMemory, aNegativeNumberOfNetworksIsNone) {
    vantric_test::Vantric::WifiInfosList list = wifiListOf({7, 8}, 5);
    for (const int32_t count : {-1, INT_MIN}) {
        list.count = count;
        EXPECT_EQ(scanTranscript(list),
                  std::string(connected) + "Available Wifi: \n" + listTimings());
    }
}

TEST(HostileMemory, textsOfNetworksEndWithTheirField) {
    vantric_test::Vantric::WifiInfosList list = wifiListOf({INT_MIN, INT_MAX}, 5);
    setText(list.entries[0].ssid, std::string(33, 'a'));
    setText(list.entries[1].ssid, std::string(33, 'b'));
    list.entries[0].encryptionType = INT_MAX;
    list.entries[1].encryptionType = INT_MIN;
    EXPECT_EQ(scanTranscript(list),
              std::string(connected) + "Available Wifi: \n\t0 - " + std::string(33, 'b') +
                  ", -2147483648 (Unknown encryption type), 2147483647\n\t1 - " +
                  std::string(33, 'a') + ", 2147483647 (Unknown encryption type), -2147483648\n" +
                  listTimings());
}

TEST(HostileMemory, headersThatAreNotOursCountAsUnpublished) {
    struct Header {
        uint32_t version;
        uint8_t valid;
    };
    for (const Header header :
         {Header{2, 1}, Header{1, 2}, Header{0, 0}, Header{UINT32_MAX, 255}}) {
        PublishedServer server;
        server.state.publish(freshState());
        vantric_test::setHeader(server.state, header.version, header.valid);
        EXPECT_EQ(transcript(probe({"--enablewifi"}, 20)),
                  std::string(connected) +
                      "Failed to get connectivity type\n"
                      "Current connectivity is: None\nNow changing to Wifi" +
                      timingsBlock({"setConnectivityType: #us"}))
            << header.version;
    }
}

TEST(HostileMemory, objectsOfAnotherSizeAreResized) {
    const std::vector<std::string> names = {"ModemStateShm", "ModemStateEx", "ModemWifiList",
                                            "ModemCommandsShm"};
    for (const std::uintmax_t size : {1U, 1'000'000U}) {
        for (const std::string& name : names) {
            std::ofstream("/dev/shm/" + name) << '\0';
            std::filesystem::resize_file("/dev/shm/" + name, size);
        }
        EXPECT_EQ(transcript(probe({"--availablewifi"})),
                  std::string(connected) + "Failed to get the list of available wifi networks.\n" +
                      listTimings());
        EXPECT_EQ(std::filesystem::file_size("/dev/shm/ModemStateShm"), 153U);
        EXPECT_EQ(std::filesystem::file_size("/dev/shm/ModemStateEx"), 168U);
        EXPECT_EQ(std::filesystem::file_size("/dev/shm/ModemWifiList"), 4120U);
        EXPECT_EQ(std::filesystem::file_size("/dev/shm/ModemCommandsShm"), 4128U);
    }
}

TEST(HostileMemory, locksLeftBehindByADeadServerAreFreed) {
    struct Lock {
        const char* segment;
        const char* semaphore;
    };
    for (const Lock lock :
         {Lock{"state", "ModemStateShmLock"}, Lock{"commands", "ModemCommandsShmLock"}}) {
        Bench bench(
            std::string(R"({"timeline": [{"at": 0.1, "do": "dieHoldingLock", "segment": ")") +
            lock.segment + R"("}]})");
        const auto death = bench.simulator().wait();
        ASSERT_TRUE(death && death->signal() == SIGKILL);
        ASSERT_EQ(vantric_test::semaphoreValue(lock.semaphore), 0);
        EXPECT_EQ(bench.transcript({"--enablewifi"}), changingAtOnce()) << lock.segment;
        EXPECT_EQ(vantric_test::semaphoreValue(lock.semaphore), 1);
    }
}

// What a killed command leaves behind disturbs neither the server nor the next command.
TEST(HostileMemory, killedCommandsDisturbNobody) {
    Bench bench(R"({"timeline": [{"at": 0, "do": "stickSwitch"}]})");
    {
        ChildProcess command(bench.probe({"--switchtowifi"}));
        ASSERT_TRUE(bench.simulator().waitForOutput("frame 5 "));
        command.sendSignal(SIGKILL);
        const auto status = command.wait();
        ASSERT_TRUE(status && status->signal() == SIGKILL);
    }
    EXPECT_EQ(bench.transcript({"--enablewifi"}), changingAtOnce());
    EXPECT_EQ(bench.frames(),
              std::vector<std::string>({"5 SwitchToWifi 0 \"\"", "5 SwitchToWifi 0 \"\""}));
}

}  // namespace
