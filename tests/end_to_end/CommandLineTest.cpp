// The walk along the arguments, as a user of the program sees it.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>

#include "tests/end_to_end/Bench.h"
#include "tests/end_to_end/Transcript.h"
#include "tests/support/PublishedServer.h"

namespace {

using vantric_test::Bench;
using vantric_test::Command;
using vantric_test::probe;
using vantric_test::Result;
using vantric_test::run;
using vantric_test::runCleanly;
using vantric_test::sharedMemoryNames;
using vantric_test::timingsBlock;
using vantric_test::transcript;
using Frames = std::vector<std::string>;

constexpr const char* usage =
    "Vantric test client.\n"
    "---------------------------------\n"
    "This test client interacts with a running vantric server for testing purpose.\n"
    "\n"
    "vantricprobe --status           --> Periodically report the status obtained from the server\n"
    "vantricprobe --enablewifi       --> Enable the wifi interface\n"
    "vantricprobe --disablewifi      --> Disable the wifi interface\n"
    "vantricprobe --switchtowifi     --> Enable the wifi interface and wait until it is confirmed "
    "to be online\n"
    "vantricprobe --switchtocarrier  --> Enables the carrier interface and wait until it is "
    "confirmed to be online\n"
    "vantricprobe --setwifi myname   --> Set the name of the wifi network to connect\n"
    "vantricprobe --setConfig configFilename --> Set modem config using a backup config file\n"
    "vantricprobe --setConfigKeepWifi configFilename --> Set the modem config using backup config "
    "file and keeps the WIFI settings\n"
    "vantricprobe --availablewifi    --> Get the list of available wifi networks\n"
    "vantricprobe --forgetwifi       --> Forget the info on the current wifi network\n"
    "\n";

constexpr const char* missingValueMessage = "basic_string::_M_construct null not valid";

std::string changingAtOnce(const char* target) {
    return std::string("Client successfully connected.\nCurrent connectivity is: Carrier\n") +
           "Now changing to " + target + timingsBlock({"setConnectivityType: #us"});
}

// Joining a network that is in use already takes one look.
std::string joiningAgain(const std::string& name) {
    return "Client successfully connected.\nCurrent wifi name is: " + name + "\nNow changing to " +
           name + "\n.\nWifi name changed.\n" +
           timingsBlock({"setWifiSSID: #us", "modem wifi change: #sec"});
}

Command named(const std::string& name) {
    Command command = probe({});
    command.commandName = name;
    return command;
}

// A run that ends by SIGABRT for want of a value; returns its output.
std::string abortedOutput(const Command& command) {
    const rlimit noCore = {0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    const Result result = run(command, vantric_test::commandPatience);
    EXPECT_TRUE(result.status && result.status->signal() == SIGABRT);
    EXPECT_NE(result.errors.find(missingValueMessage), std::string::npos) << result.errors;
    return result.output;
}

TEST(VantricprobeCommandLine, printsTheUsageText) {
    EXPECT_EQ(runCleanly(probe({"-h"})).output, usage);
    EXPECT_EQ(runCleanly(probe({"--help"})).output, usage);
    EXPECT_TRUE(sharedMemoryNames().empty());
}

TEST(VantricprobeCommandLine, writesNothingWithoutArguments) {
    EXPECT_EQ(runCleanly(probe({})).output, "");
    EXPECT_TRUE(sharedMemoryNames().empty());
}

TEST(VantricprobeCommandLine, writesNothingForAnUnknownWord) {
    EXPECT_EQ(runCleanly(probe({"frobnicate"})).output, "");
}

TEST(VantricprobeCommandLine, takesOnlyTheExactWords) {
    const std::vector<std::string> words = {"--STATUS",
                                            "--enablewifi ",
                                            " --enablewifi",
                                            "--enablewif",
                                            "--enablewifis",
                                            "-enablewifi",
                                            "enablewifi",
                                            "--setconfig",
                                            "--setWifi",
                                            "--setwifi=home",
                                            "-H",
                                            "-help",
                                            "--Help",
                                            "-hh",
                                            "help",
                                            "--",
                                            "-",
                                            "",
                                            "-s",
                                            "--statusCapi",
                                            "--SETCONFIG",
                                            "--switchtoWifi",
                                            "--forgetWifi",
                                            "--available-wifi",
                                            "--setConfigKeepwifi"};
    EXPECT_EQ(runCleanly(probe(words)).output, "");
    EXPECT_TRUE(sharedMemoryNames().empty());
}

TEST(VantricprobeCommandLine, examinesItsOwnNameAsWell) {
    EXPECT_EQ(runCleanly(named("--help")).output, usage);
}

TEST(VantricprobeCommandLine, runsTheCommandThatItIsNamedAfter) {
    Bench bench;
    EXPECT_EQ(transcript(named("--disablewifi")), changingAtOnce("Carrier"));
    EXPECT_EQ(bench.frames(), Frames({"6 SwitchToCarrier 0 \"\""}));
}

TEST(VantricprobeCommandLine, stopsAtAHelpOption) {
    Bench bench;
    EXPECT_EQ(bench.transcript({"--enablewifi", "-h", "--status"}), changingAtOnce("Wifi") + usage);
    EXPECT_EQ(bench.frames(), Frames({"5 SwitchToWifi 0 \"\""}));
}

TEST(VantricprobeCommandLine, printsOnlyTheUsageTextWhenHelpComesFirst) {
    EXPECT_EQ(runCleanly(probe({"--help", "--enablewifi", "-h"})).output, usage);
    EXPECT_TRUE(sharedMemoryNames().empty());
}

TEST(VantricprobeCommandLine, runsCommandsInTheirOrder) {
    Bench bench(R"({"networks": [], "delays": {"scan": 0, "switchConnectivity": 60000}})");
    EXPECT_EQ(bench.transcript({"--disablewifi", "nonsense", "--availablewifi", "--enablewifi"}),
              changingAtOnce("Carrier") + "Client successfully connected.\nAvailable Wifi: \n" +
                  timingsBlock({"getWifiAvailableListBlocking: #ms"}) + changingAtOnce("Wifi"));
    EXPECT_EQ(bench.frames(), Frames({"6 SwitchToCarrier 0 \"\"", "10 RequestWifiList 0 \"\"",
                                      "5 SwitchToWifi 0 \"\""}));
}

TEST(VantricprobeCommandLine, runsACommandAsOftenAsItIsNamed) {
    Bench bench(R"({"timeline": [{"at": 0, "do": "stickSwitch"}]})");
    EXPECT_EQ(bench.transcript({"--enablewifi", "--enablewifi"}),
              changingAtOnce("Wifi") + changingAtOnce("Wifi"));
    EXPECT_EQ(bench.frames(), Frames({"5 SwitchToWifi 0 \"\"", "5 SwitchToWifi 0 \"\""}));
}

TEST(VantricprobeCommandLine, examinesAValueAsAnOptionAgain) {
    Bench bench(R"({"state": {"wifiSsid": "--availablewifi"}, "networks": []})", 10);
    EXPECT_EQ(bench.transcript({"--setwifi", "--availablewifi"}),
              joiningAgain("--availablewifi") +
                  "Client successfully connected.\nAvailable Wifi: \n" +
                  timingsBlock({"getWifiAvailableListBlocking: #ms"}));
    EXPECT_EQ(bench.frames(),
              Frames({"7 SetWifiSsid 15 \"--availablewifi\"", "10 RequestWifiList 0 \"\""}));
}

TEST(VantricprobeCommandLine, startsTheMonitorThatAValueNames) {
    Bench bench(R"({"state": {"wifiSsid": "--status"}, "networks": []})", 4);
    vantric_test::ChildProcess command(bench.probe({"--setwifi", "--status"}));
    EXPECT_TRUE(command.waitForOutput("HostName: modem\n"));
    command.sendSignal(SIGTERM);
    const auto status = command.wait();
    EXPECT_TRUE(status && status->signal() == SIGTERM);
    const std::string monitor = "Client successfully connected.\n====";
    EXPECT_EQ(vantric_test::masked(command.output()).find(joiningAgain("--status") + monitor), 0U);
    EXPECT_EQ(bench.frames(),
              Frames({"7 SetWifiSsid 8 \"--status\"", "10 RequestWifiList 0 \"\""}));
}

TEST(VantricprobeCommandLine, printsTheUsageTextThatAValueNames) {
    Bench bench(R"({"state": {"wifiSsid": "-h"}})", 10);
    EXPECT_EQ(bench.transcript({"--setwifi", "-h", "--enablewifi"}), joiningAgain("-h") + usage);
    EXPECT_EQ(bench.frames(), Frames({"7 SetWifiSsid 2 \"-h\""}));
}

TEST(VantricprobeCommandLine, endsWithStatus0WhenItsOutputIsLost) {
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    ASSERT_NE(full, -1);
    Command command = probe({"--availablewifi", "-h"});
    command.standardOutput = full;
    runCleanly(command);
    close(full);
}

TEST(VantricprobeCommandLine, abortsWhenTheValueIsMissing) {
    for (const char* option : {"--setwifi", "--setConfig", "--setConfigKeepWifi"}) {
        EXPECT_EQ(abortedOutput(probe({option})), "") << option;
    }
    EXPECT_TRUE(sharedMemoryNames().empty());
}

TEST(VantricprobeCommandLine, keepsWhatEarlierCommandsWroteWhenItAborts) {
    Bench bench;
    EXPECT_EQ(vantric_test::masked(abortedOutput(bench.probe({"--enablewifi", "--setConfig"}))),
              changingAtOnce("Wifi"));
    EXPECT_EQ(bench.frames(), Frames({"5 SwitchToWifi 0 \"\""}));
}

TEST(VantricprobeCommandLine, missesAValueOnlyWhenItsTurnComes) {
    Bench bench(R"({"state": {"wifiSsid": "--setwifi"}})", 10);
    EXPECT_EQ(vantric_test::masked(abortedOutput(bench.probe({"--setwifi", "--setwifi"}))),
              joiningAgain("--setwifi"));
    EXPECT_EQ(bench.frames(), Frames({"7 SetWifiSsid 9 \"--setwifi\""}));
}

}  // namespace
