// What `vantricctl inspect` finds in exchanges that real processes have broken, and that it changes
// nothing.
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <set>

#include "Vantric/Utils/MultiProcessLock.h"
#include "ctl/Inspection.h"
#include "tests/ctl/CtlRun.h"
#include "tests/support/Privileges.h"
#include "tests/support/ProcessFacts.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/RawSegment.h"
#include "tests/support/RawSemaphore.h"
#include "tests/support/Roles.h"

namespace {

using namespace vantric_test;
using com_qel::Orvane::Vantric::ClientServer::MultiProcessLock;
using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands;

// The bytes and the attributes of everything in /dev/shm.
std::map<std::string, std::string> sharedMemoryImage() {
    std::map<std::string, std::string> image;
    for (const std::string& name : sharedMemoryNames()) {
        const struct stat status = segmentStatus(name);
        image[name] = std::to_string(status.st_ino) + " " + std::to_string(status.st_mode) + " " +
                      std::to_string(status.st_uid) + " " + fileContent(segmentPath(name));
    }
    return image;
}

int waitToBeKilled() {
    std::printf("ready\n");
    std::fflush(stdout);
    pause();
    return 0;
}

const RoleRegistration holder("lockHolder", [](const auto& arguments) {
    MultiProcessLock lock(arguments.at(0));
    lock.lock();
    return waitToBeKilled();
});

const RoleRegistration client("client", [](const auto&) {
    const SharedMemoryModemCommands channel(false);
    return waitToBeKilled();
});

void runRoleAndKillIt(const std::string& role, const Words& arguments = {}) {
    ChildProcess process(roleCommand(role, arguments));
    ASSERT_TRUE(process.waitForOutput("ready\n"));
    process.sendSignal(SIGKILL);
    ASSERT_TRUE(process.wait());
}

// "finding: where", each with a meaning and a remedy.
std::set<std::string> findingsIn(const Json& json) {
    std::set<std::string> findings;
    for (const Json& finding : json.at("findings")) {
        EXPECT_FALSE(finding.at("meaning").get<std::string>().empty());
        EXPECT_FALSE(finding.at("remedy").get<std::string>().empty());
        findings.insert(finding.at("finding").get<std::string>() + ": " +
                        finding.at("where").get<std::string>());
    }
    return findings;
}

// A server and a client that are well until the test breaks something.
class Inspect : public testing::Test {
  protected:
    Inspect() {
        server.publishAt(secondsNow());
        server.extendedState.publish(someExtendedState(1));
        server.wifiList.publish(wifiListOf({10, 20}, 1));
    }

    // Inspects and compares; nothing may have changed.
    Json expectFindings(const std::set<std::string>& expected, const Words& options = {}) {
        const auto before = sharedMemoryImage();
        Words arguments = {"inspect"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const CtlResult result = runForJson(arguments);
        EXPECT_EQ(findingsIn(result.json), expected);
        EXPECT_EQ(result.status, expected.empty() ? 0 : 1);
        EXPECT_EQ(result.errors, "");
        EXPECT_EQ(sharedMemoryImage(), before);
        return result.json;
    }

    template <class Change>
    void publishState(Change change) {
        auto state = freshState();
        change(state);
        server.state.publish(state);
    }

    PublishedServer server;
    SharedMemoryModemCommands commands{false};
};

TEST_F(Inspect, findsNothingWrongWithAHealthyExchange) {
    const Json json = expectFindings({});
    EXPECT_EQ(json["objects"]["ModemStateShm"]["mappedBy"][0]["process"], getpid());
    EXPECT_EQ(json["objects"]["ModemCommandsShm"]["attachCount"], 2);
    EXPECT_EQ(json["semaphores"].size(), 8U);
}

TEST(InspectOfNothing, findsThatNoServerRunsAndCreatesNothing) {
    const CtlResult result = runForJson({"inspect"});
    EXPECT_EQ(findingsIn(result.json),
              std::set<std::string>{
                  "no server: ModemStateShm, ModemStateEx, ModemWifiList, ModemCommandsShm"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(sharedMemoryNames(), Words());
}

TEST_F(Inspect, findsTheLockOfAKilledHolder) {
    runRoleAndKillIt("lockHolder", {"ModemStateShmLock"});
    expectFindings({"lock held: ModemStateShmLock"});
}

TEST_F(Inspect, findsTheCountsOfAKilledClient) {
    runRoleAndKillIt("client");
    expectFindings({"attach count too high: ModemCommandsShm",
                    "producers or consumers too high: ModemCommandsShm"});
}

// Without this right, root may not look into the processes that have it.
bool giveUpTracing() {
    return geteuid() != 0 || prctl(PR_CAPBSET_DROP, CAP_SYS_PTRACE, 0, 0, 0) == 0;
}

TEST_F(Inspect, doesNotJudgeCountsWithoutLookingIntoAllProcesses) {
    runRoleAndKillIt("client");
    Command command = vantric_test::vantricctl({"inspect", "--json"});
    command.preparations = {obeyFileModes, giveUpTracing};
    const Json findings = Json::parse(run(command).output)["findings"];
    EXPECT_EQ(findings.size(), 2U);
    for (const Json& finding : findings) {
        EXPECT_EQ(finding["remedy"], "Inspect as root.") << finding;
    }
}

TEST_F(Inspect, findsAFullRing) {
    const std::string payload(4088, 'x');
    commands.enqueue(12, payload.data(), 4088);
    expectFindings({"full ring: ModemCommandsShm", "ring not drained: ModemCommandsShm"});
}

TEST_F(Inspect, findsACommandThatWaits) {
    commands.enqueue(5, nullptr, 0);
    const Json json = expectFindings({"ring not drained: ModemCommandsShm"});
    EXPECT_EQ(json["objects"]["ModemCommandsShm"]["ring"]["frames"][0]["name"], "SwitchToWifi");
}

TEST_F(Inspect, hidesSecretsUnlessTheyAreAskedFor) {
    const std::string payload = "home,2,hush";
    commands.enqueue(14, payload.data(), static_cast<uint32_t>(payload.size()));
    publishState([](auto& state) { setText(state.wifiPassword, "hush"); });
    const std::set<std::string> findings = {"ring not drained: ModemCommandsShm"};
    const Json hidden = expectFindings(findings);
    EXPECT_EQ(hidden.dump().find("hush"), std::string::npos);
    EXPECT_EQ(hidden.dump().find("68757368"), std::string::npos);
    EXPECT_EQ(hidden["objects"]["ModemCommandsShm"]["ring"]["frames"][0]["payload"],
              "home,2,(hidden)");
    const Json shown = expectFindings(findings, {"--show-secrets"});
    EXPECT_EQ(shown["objects"]["ModemCommandsShm"]["ring"]["frames"][0]["payload"], payload);
    EXPECT_EQ(shown["objects"]["ModemStateShm"]["record"]["wifiPassword"], "hush");
    const std::string hiddenText = run(vantric_test::vantricctl({"inspect"})).output;
    EXPECT_NE(hiddenText.find(", payload home,2,(hidden)\n"), std::string::npos) << hiddenText;
    EXPECT_EQ(hiddenText.find("hush"), std::string::npos) << hiddenText;
    const auto text = run(vantric_test::vantricctl({"inspect", "--show-secrets"})).output;
    EXPECT_NE(text.find(", payload home,2,hush\n"), std::string::npos) << text;
    EXPECT_NE(text.find("  hush\n"), std::string::npos) << text;
}

TEST_F(Inspect, findsAStaleState) {
    server.publishAt(secondsNow() - 310);
    expectFindings({"stale state: ModemStateShm"});
}

TEST_F(Inspect, findsAStateWithoutRecord) {
    invalidate(server.state);
    expectFindings({"nothing published: ModemStateShm"});
}

TEST_F(Inspect, findsAnotherLayoutVersion) {
    setHeader(server.extendedState, 2, 1);
    expectFindings({"other version: ModemStateEx"});
}

TEST_F(Inspect, findsAnObjectOfWrongSize) {
    ASSERT_EQ(truncate("/dev/shm/ModemWifiList", 100), 0);
    const Json json = expectFindings({"wrong size: ModemWifiList"});
    EXPECT_EQ(json["objects"]["ModemWifiList"]["size"], 100);
}

TEST_F(Inspect, findsAnObjectOfAnotherUser) {
    // Without the right to give files away there is no such object; its judgement stays.
    if (chown("/dev/shm/ModemStateEx", geteuid() + 1, getegid()) == 0) {
        expectFindings({"foreign owner: ModemStateEx"});
        return;
    }
    auto inspection = vantricctl::inspectExchange();
    inspection.objects[1].file.owner = geteuid() + 1;
    EXPECT_STREQ(vantricctl::findingsOf(inspection).at(0).name, "foreign owner");
}

TEST_F(Inspect, findsFilesThatCannotBeRead) {
    ASSERT_EQ(chmod("/dev/shm/ModemStateEx", 0), 0);
    ASSERT_EQ(chmod("/dev/shm/sem.ModemStateExLock", 0), 0);
    Command command = vantric_test::vantricctl({"inspect", "--json"});
    command.preparations = {obeyFileModes};
    const Result result = run(command);
    EXPECT_EQ(findingsIn(Json::parse(result.output)),
              std::set<std::string>{"unreadable: ModemStateEx, ModemStateExLock"});
}

TEST_F(Inspect, findsALockAboveOne) {
    RawSemaphore("ModemWifiListLock").post();
    expectFindings({"lock above one: ModemWifiListLock"});
}

TEST_F(Inspect, decodesASemaphoreOfAnotherWordSize) {
    const bool hasWideWords = sizeof(sem_t) == 32;
    std::string bytes(hasWideWords ? 16 : 32, '\0');
    bytes[0] = static_cast<char>(hasWideWords ? 1 << 1 : 1);
    const std::string path = segmentPath(semaphoreObject("ModemStateExLock"));
    ASSERT_EQ(unlink(path.c_str()), 0);
    std::ofstream(path) << bytes;
    const Json json = expectFindings({"semaphore of another word size: ModemStateExLock"});
    const Json& semaphore = json["semaphores"][2];
    EXPECT_EQ(semaphore["name"], "ModemStateExLock");
    EXPECT_EQ(semaphore["value"], 1);
    EXPECT_EQ(semaphore["bits"], hasWideWords ? 32 : 64);
}

TEST_F(Inspect, findsACountOutsideTheList) {
    for (const int32_t count : {-1, 101}) {
        auto list = wifiListOf({10}, 1);
        list.count = count;
        server.wifiList.publish(list);
        expectFindings({"count out of range: ModemWifiList.count"});
    }
}

TEST_F(Inspect, findsTextsWithoutEnd) {
    publishState([](auto& state) { setText(state.hostname, std::string(32, 'h')); });
    auto list = wifiListOf({10, 20}, 1);
    setText(list.entries[1].ssid, std::string(33, 's'));
    list.entries[1].encryptionType = 0;  // a NUL, but of the next field
    server.wifiList.publish(list);
    expectFindings({"text without end: ModemStateShm.hostname, ModemWifiList.entries[1].ssid"});
}

TEST_F(Inspect, findsAnImpossibleRing) {
    RawSegment ring("ModemCommandsShm");
    for (const std::size_t offset : {16U, 20U, 24U}) {
        const uint32_t before = ring.word(offset);
        ring.writeWord(offset, 4097);
        expectFindings({"impossible ring: ModemCommandsShm"});
        ring.writeWord(offset, before);
    }
}

TEST_F(Inspect, findsAFrameThatIsLongerThanTheRing) {
    commands.enqueue(5, nullptr, 0);
    commands.enqueue(6, nullptr, 0);
    RawSegment("ModemCommandsShm").writeWord(42, 1);
    expectFindings({"ring not drained: ModemCommandsShm", "torn frame: ModemCommandsShm"});
}

TEST_F(Inspect, watchesWithoutChangingAnythingAndEndsBySignal) {
    runRoleAndKillIt("lockHolder", {"ModemStateShmLock"});
    const auto before = sharedMemoryImage();
    ChildProcess process(vantric_test::vantricctl({"inspect", "--watch", "--json"}));
    ASSERT_TRUE(eventually([&] {
        const std::string output = process.output();
        return std::count(output.begin(), output.end(), '\n') >= 2;
    }));
    process.sendSignal(SIGINT);
    const auto status = process.wait();
    ASSERT_TRUE(status);
    EXPECT_EQ(status->code(), 130);
    EXPECT_EQ(sharedMemoryImage(), before);
}

}  // namespace
