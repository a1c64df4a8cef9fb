#include "ctl/Wait.h"

#include <unistd.h>

#include <csignal>

#include "ctl/Failure.h"

namespace vantricctl {

namespace {

constexpr unsigned int graceSeconds = 2;

volatile std::sig_atomic_t arrivedSignal = 0;

extern "C" void noteSignal(int signal) {
    arrivedSignal = signal;
    alarm(graceSeconds);
}

// Only what a signal handler may call.
extern "C" void endBlockedProcess(int) {
    if (arrivedSignal != 0) {
        _exit(statusSignal + arrivedSignal);
    }
    constexpr char sentence[] =
        "vantricctl: The time is over: another process holds a lock. See 'vantricctl inspect'.\n";
    static_cast<void>(!write(STDERR_FILENO, sentence, sizeof(sentence) - 1));
    _exit(statusTimeOver);
}

void handle(int signal, void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    // A wait for a lock must go on: the library takes an interrupted one for a success.
    action.sa_flags = SA_RESTART;
    sigaction(signal, &action, nullptr);
}

}  // namespace

void catchSignals() {
    handle(SIGINT, noteSignal);
    handle(SIGTERM, noteSignal);
    handle(SIGALRM, endBlockedProcess);
    handle(SIGPIPE, SIG_IGN);
}

void checkSignals() {
    if (arrivedSignal != 0) {
        throw Failure(statusSignal + arrivedSignal);
    }
}

bool waitForPoll(const Deadline& deadline) {
    checkSignals();
    if (deadline.hasPassed()) {
        return false;
    }
    com_qel::Orvane::Vantric::sleepForPollInterval();
    checkSignals();
    return true;
}

void limitBlocking(unsigned int seconds) {
    if (arrivedSignal == 0) {
        alarm(seconds);
    }
}

}  // namespace vantricctl
