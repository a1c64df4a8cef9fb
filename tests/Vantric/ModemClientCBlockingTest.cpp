#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "Vantric/ModemClientC.h"
#include "tests/Vantric/LogTranscript.h"
#include "tests/Vantric/ScriptedClient.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/Roles.h"

namespace {

using com_qel::Orvane::Vantric::ModemState;
using namespace vantric_test;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Calls = std::vector<std::string>;

constexpr uint32_t patience = 30;  // seconds; far more than any answer here takes
constexpr int32_t wpaEnterprise = 4;

constexpr const char* source = "ModemClientC";

template <class Action>
Clock::duration timeOf(Action action) {
    const Clock::time_point start = Clock::now();
    action();
    return Clock::now() - start;
}

// What a server publishes of the wifi network.
struct Wifi {
    const char* password;
    int32_t encryptionType;
    const char* connectionState;
};

constexpr Wifi forgotten = {"", 0, "N/A"};

ModemState stateWith(const Wifi& wifi) {
    ModemState state = freshState();
    setText(state.wifiPassword, wifi.password);
    state.wifiEncryptionType = wifi.encryptionType;
    setText(state.wifiConnectionState, wifi.connectionState);
    return state;
}

class ModemClientCBlocking : public testing::Test {
  protected:
    ModemClientCBlocking() : handle(modemClientCreate()) {}
    ~ModemClientCBlocking() override { modemClientDestroy(handle); }

    void SetUp() override { ASSERT_TRUE(modemClientConnect(handle)); }

    void publish(const Wifi& wifi) { server.state.publish(stateWith(wifi)); }

    // Forgets on command 8 and changes to `connectionState` on command 14 or 15.
    void answerWithConnectionState(const char* connectionState) {
        server.answer([this, connectionState](const Frame& frame) {
            publish({"", 0, frame.command == 8 ? "N/A" : connectionState});
        });
    }

    bool connectTo(const std::string& ssid, uint32_t timeoutSeconds) {
        return modemClientSetWifiConnectionBlocking(handle, ssid.c_str(), 2, "pw", timeoutSeconds);
    }

    PublishedServer server;
    ModemClientHandle handle;
};

// The same calls in a process that logs. The argument is the timeout.
using BlockingCall = bool (*)(ModemClientHandle, uint32_t);

template <BlockingCall call>
int callBlocking(const std::vector<std::string>& arguments) {
    ModemClientHandle handle = modemClientCreate();
    const bool isConnected = modemClientConnect(handle);
    const bool hasSucceeded = call(handle, static_cast<uint32_t>(std::stoul(arguments.at(0))));
    modemClientDestroy(handle);
    return isConnected && !hasSucceeded ? 0 : 1;
}

bool connectPlainly(ModemClientHandle handle, uint32_t timeoutSeconds) {
    return modemClientSetWifiConnectionBlocking(handle, "home", 2, "pw", timeoutSeconds);
}

bool connectWithRadius(ModemClientHandle handle, uint32_t timeoutSeconds) {
    return modemClientSetWifiConnectionRadiusBlocking(handle, "home", wpaEnterprise, "user", "pw",
                                                      timeoutSeconds);
}

const RoleRegistration forgetting("failToForget", callBlocking<modemClientForgetWifiBlocking>);
const RoleRegistration connecting("failToConnect", callBlocking<connectPlainly>);
const RoleRegistration connectingWithRadius("failToConnectWithRadius",
                                            callBlocking<connectWithRadius>);

// What a role that must fail logs from level "trace" upwards.
std::string logOfFailing(const std::string& role, const std::string& timeoutSeconds) {
    const Result result = run(roleCommand(role, {timeoutSeconds}, loggingFrom("trace")));
    EXPECT_EQ(result.status->code(), 0) << result.errors;
    return masked(result.output);
}

std::string forgetTimeout(const std::string& seconds) {
    return warningRecord(source, "Forget current wifi settings (blocking) timed out after " +
                                     seconds + " seconds.\n");
}

}  // namespace

TEST_F(ModemClientCBlocking, forgetsWhatIsForgottenAlready) {
    publish(forgotten);
    EXPECT_TRUE(modemClientForgetWifiBlocking(handle, patience));
    EXPECT_EQ(server.takeFrames(), (Frames{{8, "0,0"}}));
}

TEST_F(ModemClientCBlocking, forgetsWhenTheServerHasForgotten) {
    publish({"secret", 2, "COMPLETED"});
    server.answer([this](const Frame&) { publish(forgotten); });
    EXPECT_TRUE(modemClientForgetWifiBlocking(handle, patience));
    EXPECT_EQ(server.takeFrames(), (Frames{{8, "0,0"}}));
}

TEST_F(ModemClientCBlocking, waitsForBothPasswordAndEncryptionToBeForgotten) {
    for (const Wifi& wifi : {Wifi{"0", 0, "N/A"}, Wifi{"", 1, "N/A"}}) {
        publish(wifi);
        bool isForgotten = true;
        const Clock::duration time =
            timeOf([&] { isForgotten = modemClientForgetWifiBlocking(handle, 1); });
        EXPECT_FALSE(isForgotten);
        EXPECT_GE(time, 1s);
        EXPECT_LT(time, 10s);
    }
}

TEST_F(ModemClientCBlocking, forgetsNothingWithoutTimeButSendsTheCommand) {
    publish(forgotten);
    EXPECT_FALSE(modemClientForgetWifiBlocking(handle, 0));
    EXPECT_EQ(server.takeFrames(), (Frames{{8, "0,0"}}));
}

TEST_F(ModemClientCBlocking, takesAnUnreadableStateForForgotten) {
    EXPECT_TRUE(modemClientForgetWifiBlocking(handle, patience));
}

TEST_F(ModemClientCBlocking, neverTakesAStaleStateForForgotten) {
    ModemState state = stateWith(forgotten);
    state.timestamp = secondsNow() - 301;
    server.state.publish(state);
    EXPECT_FALSE(modemClientForgetWifiBlocking(handle, 1));
}

TEST_F(ModemClientCBlocking, connectsWhenTheStateChangesToANewOne) {
    publish({"secret", 2, "COMPLETED"});
    answerWithConnectionState("CONNECTED to home");
    EXPECT_TRUE(connectTo("home", patience));
    EXPECT_EQ(server.takeFrames(), (Frames{{8, "0,0"}, {14, "home,2,pw"}}));
}

TEST_F(ModemClientCBlocking, connectsWithRadius) {
    publish({"secret", 2, "COMPLETED"});
    answerWithConnectionState("CONNECTED to home");
    EXPECT_TRUE(connectWithRadius(handle, patience));
    EXPECT_EQ(server.takeFrames(), (Frames{{8, "0,0"}, {15, "home,4,user,pw"}}));
}

TEST_F(ModemClientCBlocking, timesOutOnAStateThatIsTheSameAsBefore) {
    publish({"", 0, "COMPLETED"});
    bool isConnected = true;
    const Clock::duration time = timeOf([&] { isConnected = connectTo("home", 1); });
    EXPECT_FALSE(isConnected);
    EXPECT_GE(time, 1s);
    EXPECT_LT(time, 10s);
    EXPECT_EQ(server.takeFrames(), (Frames{{8, "0,0"}, {14, "home,2,pw"}}));
}

TEST_F(ModemClientCBlocking, timesOutOnAStateThatOnlyChangedToNotAvailable) {
    publish({"", 0, "COMPLETED"});
    server.answer([this](const Frame& frame) {
        if (frame.command == 14) {
            publish(forgotten);
        }
    });
    EXPECT_FALSE(connectTo("home", 1));
}

TEST_F(ModemClientCBlocking, doesNotAskForAConnectionItCouldNotForgetTheOldOneFor) {
    publish({"secret", 2, "COMPLETED"});
    EXPECT_FALSE(connectTo("home", 1));
    EXPECT_FALSE(connectWithRadius(handle, 0));
    EXPECT_EQ(server.takeFrames(), (Frames{{8, "0,0"}, {8, "0,0"}}));
}

TEST(ModemClientCScripted, forgetFailsAtOnceWhenTheCommandCannotBeSent) {
    ScriptedClient client;
    client.sends = false;
    EXPECT_FALSE(modemClientForgetWifiBlocking(client.handle(), patience));
    EXPECT_EQ(client.calls, (Calls{"set password 0,0"}));
}

// Slept through, these failures would outlast the timeout.
TEST(ModemClientCScripted, forgetRepeatsAFailedReadWithoutSleeping) {
    ScriptedClient client;
    int failures = 10000;
    client.passwordRead = [&](int32_t& encryptionType, std::string& password) {
        encryptionType = 0;
        password.clear();
        return failures-- == 0;
    };
    EXPECT_TRUE(modemClientForgetWifiBlocking(client.handle(), patience));
    EXPECT_EQ(failures, -1);
}

TEST(ModemClientCScripted, forgetSleepsBetweenReadsThatShowANetwork) {
    ScriptedClient client;
    int reads = 0;
    client.passwordRead = [&](int32_t& encryptionType, std::string& password) {
        encryptionType = 0;
        password = ++reads < 4 ? "secret" : "";
        return true;
    };
    bool isForgotten = false;
    const Clock::duration time =
        timeOf([&] { isForgotten = modemClientForgetWifiBlocking(client.handle(), patience); });
    EXPECT_TRUE(isForgotten);
    EXPECT_EQ(reads, 4);
    EXPECT_GE(time, 150ms);
    EXPECT_LT(time, 5s);
}

TEST(ModemClientCScripted, connectsInTheOrderForgetReadRequestRead) {
    ScriptedClient client;
    client.passwordRead = [](int32_t& encryptionType, std::string& password) {
        encryptionType = 0;
        password.clear();
        return true;
    };
    std::vector<std::string> states = {"OLD", "OLD", "N/A", "NEW"};
    std::size_t next = 0;
    client.stateRead = [&](std::string& state) {
        state = states.at(next++);
        return true;
    };
    EXPECT_TRUE(modemClientSetWifiConnectionBlocking(client.handle(), "home", 2, "pw", patience));
    EXPECT_EQ(client.calls, (Calls{"set password 0,0", "read password", "read state",
                                   "connect home,2,pw", "read state", "read state", "read state"}));
}

TEST(ModemClientCScripted, requestsTheConnectionEvenWhenTheOldStateCannotBeRead) {
    ScriptedClient client;
    client.passwordRead = [](int32_t& encryptionType, std::string& password) {
        encryptionType = 0;
        password.clear();
        return true;
    };
    client.stateRead = [](std::string&) { return false; };
    EXPECT_FALSE(connectWithRadius(client.handle(), patience));
    EXPECT_EQ(client.calls,
              (Calls{"set password 0,0", "read password", "read state", "connect home,4,user,pw"}));
}

TEST(ModemClientCScripted, doesNotWaitForAConnectionItCouldNotRequest) {
    ScriptedClient client;
    client.passwordRead = [&](int32_t& encryptionType, std::string& password) {
        client.sends = false;
        encryptionType = 0;
        password.clear();
        return true;
    };
    EXPECT_FALSE(connectPlainly(client.handle(), patience));
    EXPECT_EQ(client.calls,
              (Calls{"set password 0,0", "read password", "read state", "connect home,2,pw"}));
}

TEST(ModemClientCScripted, sleepsAfterAFailedReadOfTheNewState) {
    ScriptedClient client;
    client.passwordRead = [](int32_t& encryptionType, std::string& password) {
        encryptionType = 0;
        password.clear();
        return true;
    };
    int reads = 0;
    client.stateRead = [&](std::string& state) {
        ++reads;
        state = reads == 1 ? "OLD" : "NEW";
        return reads == 1 || reads == 5;
    };
    bool isConnected = false;
    const Clock::duration time =
        timeOf([&] { isConnected = connectPlainly(client.handle(), patience); });
    EXPECT_TRUE(isConnected);
    EXPECT_EQ(reads, 5);
    EXPECT_GE(time, 150ms);
    EXPECT_LT(time, 5s);
}

TEST(ModemClientCScripted, coversForgettingAndConnectingByOneTimeout) {
    ScriptedClient client;
    const Clock::time_point start = Clock::now();
    client.passwordRead = [&](int32_t& encryptionType, std::string& password) {
        encryptionType = 0;
        password = Clock::now() - start < 2700ms ? "secret" : "";
        return true;
    };
    client.stateRead = [](std::string& state) {
        state = "OLD";
        return true;
    };
    EXPECT_FALSE(connectPlainly(client.handle(), 3));
    EXPECT_EQ(client.calls.back(), "read state");
    EXPECT_GE(Clock::now() - start, 3s);
    EXPECT_LT(Clock::now() - start, 5600ms);
}

TEST(ModemClientCLog, showsATimedOutForgetting) {
    PublishedServer server;
    server.state.publish(freshState());
    EXPECT_EQ(logOfFailing("failToForget", "1"), forgetTimeout("1"));
    EXPECT_EQ(logOfFailing("failToForget", "0"), forgetTimeout("0"));
}

TEST(ModemClientCLog, showsAForgettingThatUsesUpTheTimeoutOfAConnection) {
    PublishedServer server;
    server.state.publish(freshState());
    EXPECT_EQ(
        logOfFailing("failToConnect", "1"),
        forgetTimeout("1") +
            errorRecord(source,
                        "Set wifi connection (blocking) failed to forget current wifi settings"));
    EXPECT_EQ(logOfFailing("failToConnectWithRadius", "1"),
              forgetTimeout("1") + errorRecord(source,
                                               "Set wifi connection radius (blocking) failed to "
                                               "forget current wifi settings"));
}

TEST(ModemClientCLog, showsATimedOutConnection) {
    PublishedServer server;
    server.state.publish(stateWith({"", 0, "COMPLETED"}));
    EXPECT_EQ(logOfFailing("failToConnect", "1"),
              warningRecord(source, "Set wifi connection (blocking) timed out after 1 seconds.\n"));
    EXPECT_EQ(logOfFailing("failToConnectWithRadius", "1"),
              warningRecord(source,
                            "Set wifi connection radius (blocking) timed out after 1 seconds.\n"));
}
