#include "ctl/Wait.h"

#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cinttypes>
#include <csignal>
#include <cstdio>
#include <cstring>

#include "ctl/Failure.h"

namespace vantricctl {

namespace {

constexpr unsigned int graceSeconds = 2;
constexpr std::size_t longestSecret = 4096;

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

// Silences a terminal while it lives; other input is left alone.
class NoEcho {
  public:
    explicit NoEcho(const char* prompt) : isTerminal_(tcgetattr(STDIN_FILENO, &before_) == 0) {
        if (isTerminal_) {
            termios silent = before_;
            silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
            tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
            std::fprintf(stderr, "%s", prompt);
        }
    }
    ~NoEcho() {
        if (isTerminal_) {
            tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_);
            std::fprintf(stderr, "\n");
        }
    }

    NoEcho(const NoEcho&) = delete;
    NoEcho& operator=(const NoEcho&) = delete;

  private:
    termios before_ = {};
    bool isTerminal_;
};

}  // namespace

void catchSignals() {
    handle(SIGINT, noteSignal);
    handle(SIGTERM, noteSignal);
    handle(SIGALRM, endBlockedProcess);
    handle(SIGPIPE, SIG_IGN);
}

void checkSignals() {
    if (arrivedSignal != 0) {
        throw Interrupted{arrivedSignal};
    }
}

std::string readSecret(const char* prompt) {
    const NoEcho noEcho(prompt);
    std::string secret;
    char character = 0;
    while (secret.size() < longestSecret) {
        // A signal ends this wait, unlike a read, so the check comes right after it.
        pollfd input = {STDIN_FILENO, POLLIN, 0};
        const int ready = poll(&input, 1, 100);
        checkSignals();
        if (ready <= 0) {
            continue;
        }
        if (read(STDIN_FILENO, &character, 1) != 1 || character == '\n') {
            break;
        }
        secret += character;
    }
    return secret;
}

BlockingLimit::BlockingLimit(unsigned int seconds) {
    alarm(seconds);
}

BlockingLimit::~BlockingLimit() {
    if (arrivedSignal == 0) {
        alarm(0);
    }
}

Wait::Wait(uint32_t timeoutSeconds, Countdown countdown)
    : timeoutSeconds_(timeoutSeconds),
      hasCountdown_(countdown == Countdown::OnTerminal && isatty(STDERR_FILENO) == 1),
      deadline_(timeoutSeconds) {}

Wait::~Wait() {
    clearCountdown();
}

bool Wait::next() {
    checkSignals();
    if (deadline_.hasPassed()) {
        return false;
    }
    showCountdown();
    com_qel::Orvane::Vantric::sleepForPollInterval();
    checkSignals();
    return true;
}

void Wait::finish() {
    finalSeconds_ = seconds();
    clearCountdown();
}

double Wait::seconds() const {
    if (finalSeconds_) {
        return *finalSeconds_;
    }
    using std::chrono::milliseconds;
    const auto elapsed = std::chrono::steady_clock::now() - start_;
    return static_cast<double>(std::chrono::duration_cast<milliseconds>(elapsed).count()) / 1000;
}

void Wait::showCountdown() {
    const auto left = int64_t{timeoutSeconds_} - static_cast<int64_t>(seconds());
    if (hasCountdown_ && left != shownSeconds_) {
        std::fprintf(stderr, "\r\033[K%" PRId64 " s left", left);
        shownSeconds_ = left;
    }
}

void Wait::clearCountdown() {
    if (shownSeconds_ != -1) {
        std::fprintf(stderr, "\r\033[K");
        shownSeconds_ = -1;
    }
}

}  // namespace vantricctl
