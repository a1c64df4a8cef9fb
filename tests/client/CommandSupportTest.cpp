#include <gtest/gtest.h>
#include <sys/time.h>

#include <chrono>
#include <csignal>
#include <stdexcept>

#include "client/CommandSupport.h"
#include "tests/support/RawSegment.h"
#include "tests/support/Roles.h"

namespace {

using namespace std::chrono_literals;
using namespace vantric_test;
using vantricprobe::ModemClient;

volatile std::sig_atomic_t alarmCount = 0;

void setAlarmInterval(std::chrono::microseconds interval) {
    itimerval timer = {};
    timer.it_interval.tv_usec = static_cast<suseconds_t>(interval.count());
    timer.it_value = timer.it_interval;
    setitimer(ITIMER_REAL, &timer, nullptr);
}

// A signal that interrupts system calls arrives at this pace while the object lives.
class SignalStorm {
  public:
    explicit SignalStorm(std::chrono::microseconds interval) {
        struct sigaction action = {};
        action.sa_handler = [](int) { alarmCount = alarmCount + 1; };
        sigaction(SIGALRM, &action, nullptr);
        setAlarmInterval(interval);
    }
    ~SignalStorm() { setAlarmInterval(0us); }
    SignalStorm& operator=(SignalStorm&&) = delete;
};

TEST(CommandSupport, sleepsInFullHoweverManySignalsArrive) {
    const SignalStorm storm(10ms);
    const auto start = std::chrono::steady_clock::now();
    vantricprobe::sleepFor(1s);
    EXPECT_GE(std::chrono::steady_clock::now() - start, 1s);
    EXPECT_GE(alarmCount, 10);
}

// Tells at the moment of being asked whether the command's client is still attached.
struct AttachmentReport : std::exception {
    const char* what() const noexcept override {
        return segmentExists("ModemStateShm") ? "still attached" : "detached";
    }
};

const RoleRegistration throwingCommand("throwingCommand", [](const Arguments&) {
    vantricprobe::runCommand([](ModemClient&) {
        vantricprobe::writeLine("body: ", AttachmentReport().what());
        vantricprobe::write("unfinished ");
        throw AttachmentReport();
    });
    vantricprobe::writeLine("next");
    return 0;
});

TEST(CommandSupport, reportsAnExceptionOnceTheClientHasDetached) {
    const Result result = run(roleCommand("throwingCommand"));
    EXPECT_EQ(result.status.code(), 0);
    EXPECT_EQ(result.output,
              "Client successfully connected.\n"
              "body: still attached\n"
              "unfinished [Client] Exception: detached\n"
              "next\n");
    EXPECT_EQ(result.errors, "");
}

TEST(CommandSupport, letsOtherExceptionsPass) {
    EXPECT_THROW(vantricprobe::runCommand([](ModemClient&) { throw 7; }), int);
}

TEST(CommandSupport, truncatesDurationsTowardZero) {
    using vantricprobe::whole;
    EXPECT_EQ(whole<std::chrono::microseconds>(1999ns), 1);
    EXPECT_EQ(whole<std::chrono::milliseconds>(1'999'999ns), 1);
    EXPECT_EQ(whole<std::chrono::seconds>(3'999'999'999ns), 3);
    EXPECT_EQ(whole<std::chrono::seconds>(-1'999'999'999ns), -1);
}

}  // namespace
