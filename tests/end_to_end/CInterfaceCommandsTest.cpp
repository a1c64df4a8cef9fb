#include <gtest/gtest.h>

#include <chrono>

#include "tests/end_to_end/Bench.h"
#include "tests/end_to_end/Transcript.h"

namespace {

using namespace std::chrono_literals;
using vantric_test::Bench;
using vantric_test::masked;
using vantric_test::minutesInSeconds;
using vantric_test::numberBehind;
using Frames = std::vector<std::string>;

constexpr const char* forgotten = "Successfully forgot the wifi settings after ";
constexpr const char* statusFailure = "Failed to get status from C API wifi\n";
constexpr const char* forgetFrame = R"(8 SetWifiPasswordAndEncryptionType 3 "0,0")";

template <class Action>
std::chrono::steady_clock::duration timeOf(Action action) {
    const auto start = std::chrono::steady_clock::now();
    action();
    return std::chrono::steady_clock::now() - start;
}

TEST(StatusByCInterface, printsTheWholeBlock) {
    Bench bench(R"({"delays": {"refresh": 600}, "extended": {
        "serverWord": 12345,
        "carrierSignalLevel": -71,
        "wifiSsid": "home, sweet home",
        "wifiEncryptionType": 2,
        "wifiEncryptionName": "what the server calls it",
        "wifiSignalLevel": 2147483647,
        "ipv4Address": "192.168.100.200",
        "macAddress": "02:00:00:AB:CD:EF",
        "updateCounter": 2147483647}})");
    const std::string output = bench.run({"--statuscapi"}).output;
    EXPECT_EQ(masked(output),
              "Carrier:\n"
              "\tSignal level: -71\n"
              "Wifi:\n"
              "\tSignal level: 2147483647\n"
              "\tSSID:         home, sweet home\n"
              "\tEncryption:   WPA2 (PSK)\n"
              "\tIPv4:         192.168.100.200\n"
              "\tMAC Address:  02:00:00:AB:CD:EF\n"
              "\n"
              "Status execution time: #ms.\n");
    EXPECT_GE(numberBehind(output, "Status execution time: "), 600);
    EXPECT_LT(numberBehind(output, "Status execution time: "), 5'000);
    EXPECT_EQ(bench.frames(), Frames({"11 RequestModemStatus 0 \"\""}));
}

TEST(StatusByCInterface, printsEmptyFieldsAndUnknownEncryption) {
    Bench bench(R"({"delays": {"refresh": 0}, "extended": {
        "carrierSignalLevel": 0, "wifiSsid": "", "wifiEncryptionType": 99,
        "wifiEncryptionName": "", "wifiSignalLevel": -2147483648, "ipv4Address": "",
        "macAddress": ""}})");
    EXPECT_EQ(bench.transcript({"--statuscapi"}),
              "Carrier:\n"
              "\tSignal level: 0\n"
              "Wifi:\n"
              "\tSignal level: -2147483648\n"
              "\tSSID:         \n"
              "\tEncryption:   Unknown encryption type\n"
              "\tIPv4:         \n"
              "\tMAC Address:  \n"
              "\n"
              "Status execution time: #ms.\n");
}

TEST(StatusByCInterface, failsAfterAMinute) {
    Bench bench(R"({"timeline": [{"at": 0, "do": "ignoreCommand", "command": 11}]})",
                minutesInSeconds);
    std::string output;
    const auto elapsed = timeOf([&] { output = bench.transcript({"--statuscapi"}); });
    EXPECT_EQ(output, statusFailure);
    EXPECT_GE(elapsed, 60s / minutesInSeconds);
    EXPECT_LT(elapsed, 10s);
    EXPECT_EQ(bench.frames(), Frames({"11 RequestModemStatus 0 \"\""}));
}

TEST(StatusByCInterface, failsAtOnceWhenTheStatusCannotBeRead) {
    Bench bench(R"({"timeline": [{"at": 0, "do": "invalidateHeader", "segment": "extended"}]})");
    EXPECT_EQ(bench.transcript({"--statuscapi"}), statusFailure);
    EXPECT_EQ(bench.frames(), Frames());
}

TEST(ForgetWifi, waitsUntilTheServerHasForgotten) {
    Bench bench(R"({"delays": {"setEncryption": 700}})");
    const std::string output = bench.run({"--forgetwifi"}).output;
    EXPECT_EQ(masked(output), "Successfully forgot the wifi settings after #ms.\n");
    EXPECT_GE(numberBehind(output, forgotten), 700);
    EXPECT_LT(numberBehind(output, forgotten), 5'000);
    EXPECT_EQ(bench.frames(), Frames({forgetFrame}));
}

TEST(ForgetWifi, succeedsAtOnceWhenNoNetworkIsConfigured) {
    Bench bench(R"({"state": {"wifiPassword": "", "wifiEncryptionType": 0},
                    "delays": {"setEncryption": 60000}})");
    const std::string output = bench.run({"--forgetwifi"}).output;
    EXPECT_EQ(masked(output), "Successfully forgot the wifi settings after #ms.\n");
    EXPECT_LT(numberBehind(output, forgotten), 2'000);
    EXPECT_EQ(bench.frames(), Frames({forgetFrame}));
}

TEST(ForgetWifi, waitsForThePasswordAndForTheEncryption) {
    for (const char* state : {R"({"wifiPassword": "", "wifiEncryptionType": 2})",
                              R"({"wifiPassword": "left", "wifiEncryptionType": 0})"}) {
        Bench bench(std::string(R"({"delays": {"setEncryption": 400}, "state": )") + state + "}");
        const std::string output = bench.run({"--forgetwifi"}).output;
        EXPECT_GE(numberBehind(output, forgotten), 400) << state;
    }
}

TEST(ForgetWifi, failsAfterAMinute) {
    Bench bench(R"({"timeline": [{"at": 0, "do": "ignoreCommand", "command": 8}]})",
                minutesInSeconds);
    std::string output;
    const auto elapsed = timeOf([&] { output = bench.transcript({"--forgetwifi"}); });
    EXPECT_EQ(output, "Failed to forget wifi\n");
    EXPECT_GE(elapsed, 60s / minutesInSeconds);
    EXPECT_LT(elapsed, 10s);
    EXPECT_EQ(bench.frames(), Frames({forgetFrame}));
}

TEST(ForgetWifi, failsAfterAMinuteOfStaleStates) {
    Bench bench(R"({"timeline": [{"at": 0, "do": "ageTimestamps", "seconds": 10000}]})",
                minutesInSeconds);
    std::string output;
    const auto elapsed = timeOf([&] { output = bench.transcript({"--forgetwifi"}); });
    EXPECT_EQ(output, "Failed to forget wifi\n");
    EXPECT_GE(elapsed, 60s / minutesInSeconds);
}

TEST(ForgetWifi, failureEndsOnlyItsCommand) {
    Bench bench(R"({"state": {"connectivityType": 1},
                    "timeline": [{"at": 0, "do": "ignoreCommand", "command": 8},
                                 {"at": 0, "do": "ignoreCommand", "command": 11}]})",
                minutesInSeconds);
    EXPECT_EQ(bench.transcript({"--forgetwifi", "--statuscapi", "--enablewifi"}),
              std::string("Failed to forget wifi\n") + statusFailure +
                  "Client successfully connected.\n"
                  "Current connectivity is: Wifi\n"
                  "Now changing to Wifi" +
                  vantric_test::timingsBlock({"setConnectivityType: #us"}));
}

}  // namespace
