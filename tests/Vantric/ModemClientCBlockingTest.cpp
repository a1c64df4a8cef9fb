#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "Vantric/ModemClientC.h"
#include "tests/Vantric/ScriptedClient.h"
#include "tests/support/LogTranscript.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/Roles.h"

namespace {

using namespace vantric_test;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Calls = std::vector<std::string>;

constexpr uint32_t blockingPatience = 30;  // seconds; far more than any answer here takes
constexpr const char* source = "ModemClientC";

// The lengths of time that a call may take.
template <class Action>
void expectToTake(Clock::duration least, Clock::duration most, Action action) {
    const Clock::time_point start = Clock::now();
    action();
    EXPECT_GE(Clock::now() - start, least);
    EXPECT_LT(Clock::now() - start, most);
}

bool connectPlainly(ModemClientHandle handle, uint32_t timeoutSeconds) {
    return modemClientSetWifiConnectionBlocking(handle, "home", MODEM_CLIENT_ENCRYPTION_WPA2_PSK,
                                                "pw", timeoutSeconds);
}

bool connectWithRadius(ModemClientHandle handle, uint32_t timeoutSeconds) {
    return modemClientSetWifiConnectionRadiusBlocking(
        handle, "home", MODEM_CLIENT_ENCRYPTION_WPA_ENTERPRISE, "user", "pw", timeoutSeconds);
}

class ModemClientCBlocking : public testing::Test {
  protected:
    bool forget(uint32_t timeoutSeconds) {
        return modemClientForgetWifiBlocking(handle, timeoutSeconds);
    }

    ScriptedClient client;
    ModemClientHandle handle = handleOf(client);
};

// A call that must fail, of a client that fails to forget or to connect, in a process that logs.
// arguments: the timeout, and the password that the client reads
using BlockingCall = bool (*)(ModemClientHandle, uint32_t);

template <BlockingCall call>
int failBlocking(const std::vector<std::string>& arguments) {
    ScriptedClient client;
    client.readPassword = [&] { return arguments.at(1); };
    return call(handleOf(client), static_cast<uint32_t>(std::stoul(arguments.at(0)))) ? 1 : 0;
}

const RoleRegistration forgetting("forget", failBlocking<modemClientForgetWifiBlocking>);
const RoleRegistration connecting("connectPlainly", failBlocking<connectPlainly>);
const RoleRegistration connectingRadius("connectWithRadius", failBlocking<connectWithRadius>);

std::string logOf(const std::string& role, const std::string& timeoutSeconds,
                  const std::string& password) {
    const Result result = run(roleCommand(role, {timeoutSeconds, password}, loggingFrom("trace")));
    EXPECT_EQ(result.status.code(), 0) << result.errors;
    return masked(result.output);
}

std::string timeoutOf(const std::string& operation, const std::string& seconds) {
    return warningRecord(source,
                         operation + " (blocking) timed out after " + seconds + " seconds.\n");
}

std::string failureToForgetOf(const std::string& operation) {
    return errorRecord(source, operation + " (blocking) failed to forget current wifi settings");
}

}  // namespace

TEST_F(ModemClientCBlocking, forgetsByANetworkWithoutEncryptionAndThePasswordZero) {
    EXPECT_TRUE(forget(blockingPatience));
    EXPECT_EQ(client.calls, (Calls{"set password 0,0", "read password"}));
}

TEST_F(ModemClientCBlocking, waitsForThePasswordToBeForgotten) {
    client.readPassword = [] { return "0"; };
    expectToTake(1s, 10s, [&] { EXPECT_FALSE(forget(1)); });
}

TEST_F(ModemClientCBlocking, waitsForTheEncryptionToBeForgotten) {
    client.encryptionType = 1;
    expectToTake(1s, 10s, [&] { EXPECT_FALSE(forget(1)); });
}

TEST_F(ModemClientCBlocking, forgetsNothingWithoutTimeButSendsTheCommand) {
    EXPECT_FALSE(forget(0));
    EXPECT_EQ(client.calls, (Calls{"set password 0,0"}));
}

TEST_F(ModemClientCBlocking, countsItsTimeFromWhenTheCommandToForgetIsSent) {
    client.sendTime = 1100ms;
    EXPECT_TRUE(forget(1));
}

TEST_F(ModemClientCBlocking, failsAtOnceWhenTheCommandToForgetCannotBeSent) {
    client.sends = false;
    EXPECT_FALSE(forget(blockingPatience));
    EXPECT_EQ(client.calls, (Calls{"set password 0,0"}));
}

// If it slept in between, these failures would outlast the timeout.
TEST_F(ModemClientCBlocking, repeatsAFailedReadOfThePasswordWithoutSleeping) {
    int failures = 10000;
    client.readPassword = [&]() -> std::optional<std::string> {
        return failures-- == 0 ? std::optional("") : std::nullopt;
    };
    EXPECT_TRUE(forget(blockingPatience));
    EXPECT_EQ(failures, -1);
}

TEST_F(ModemClientCBlocking, sleepsBetweenReadsThatShowANetwork) {
    int reads = 0;
    client.readPassword = [&] { return ++reads < 4 ? "secret" : ""; };
    expectToTake(150ms, 5s, [&] { EXPECT_TRUE(forget(blockingPatience)); });
    EXPECT_EQ(reads, 4);
}

TEST_F(ModemClientCBlocking, connectsOnceTheStateIsNeitherTheOldOneNorNotAvailable) {
    std::vector<std::string> states = {"OLD", "OLD", "N/A", "NEW"};
    std::size_t next = 0;
    client.readState = [&] { return states.at(next++); };
    EXPECT_TRUE(connectPlainly(handle, blockingPatience));
    EXPECT_EQ(client.calls, (Calls{"set password 0,0", "read password", "read state",
                                   "connect home,2,pw", "read state", "read state", "read state"}));
}

TEST_F(ModemClientCBlocking, doesNotAskForAConnectionWithoutForgettingTheOldOne) {
    EXPECT_FALSE(connectPlainly(handle, 0));
    EXPECT_FALSE(connectWithRadius(handle, 0));
    EXPECT_EQ(client.calls, (Calls{"set password 0,0", "set password 0,0"}));
}

TEST_F(ModemClientCBlocking, requestsTheConnectionEvenWhenTheOldStateCannotBeRead) {
    client.readState = [] { return std::nullopt; };
    EXPECT_FALSE(connectWithRadius(handle, blockingPatience));
    EXPECT_EQ(client.calls,
              (Calls{"set password 0,0", "read password", "read state", "connect home,4,user,pw"}));
}

TEST_F(ModemClientCBlocking, doesNotWaitForAConnectionItCouldNotRequest) {
    client.readPassword = [&] {
        client.sends = false;
        return "";
    };
    EXPECT_FALSE(connectPlainly(handle, blockingPatience));
    EXPECT_EQ(client.calls,
              (Calls{"set password 0,0", "read password", "read state", "connect home,2,pw"}));
}

TEST_F(ModemClientCBlocking, sleepsAfterAFailedReadOfTheNewState) {
    int reads = 0;
    client.readState = [&]() -> std::optional<std::string> {
        ++reads;
        return reads == 1 ? std::optional("OLD") : reads == 5 ? std::optional("NEW") : std::nullopt;
    };
    expectToTake(150ms, 5s, [&] { EXPECT_TRUE(connectPlainly(handle, blockingPatience)); });
    EXPECT_EQ(reads, 5);
}

TEST_F(ModemClientCBlocking, coversForgettingAndConnectingByOneTimeout) {
    const Clock::time_point start = Clock::now();
    client.readPassword = [&] { return Clock::now() - start < 2s ? "secret" : ""; };
    expectToTake(4s, 5900ms, [&] { EXPECT_FALSE(connectPlainly(handle, 4)); });
    EXPECT_EQ(client.calls.back(), "read state");
}

TEST(ModemClientCLog, showsATimedOutForgetting) {
    EXPECT_EQ(logOf("forget", "1", "secret"), timeoutOf("Forget current wifi settings", "1"));
}

TEST(ModemClientCLog, showsAForgettingThatUsesUpTheTimeoutOfAConnection) {
    const std::string forgetTimeout = timeoutOf("Forget current wifi settings", "0");
    EXPECT_EQ(logOf("connectPlainly", "0", ""),
              forgetTimeout + failureToForgetOf("Set wifi connection"));
    EXPECT_EQ(logOf("connectWithRadius", "0", ""),
              forgetTimeout + failureToForgetOf("Set wifi connection radius"));
}

TEST(ModemClientCLog, showsATimedOutConnection) {
    EXPECT_EQ(logOf("connectPlainly", "1", ""), timeoutOf("Set wifi connection", "1"));
    EXPECT_EQ(logOf("connectWithRadius", "1", ""), timeoutOf("Set wifi connection radius", "1"));
}
