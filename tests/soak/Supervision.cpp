#include "tests/soak/Supervision.h"

#include <sched.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <system_error>
#include <thread>

namespace vantric_soak {

namespace {

constexpr std::chrono::milliseconds pollInterval(5);
constexpr std::chrono::seconds progressInterval(3);
constexpr std::chrono::seconds graceBehindLimit(2);

void endBlockedHunt(int) {
    constexpr char text[] = "soak_hunts: the time is up, and the hunt itself is blocked\n";
    static_cast<void>(!write(STDERR_FILENO, text, sizeof(text) - 1));
    std::_Exit(EXIT_FAILURE);
}

}  // namespace

pid_t forkProcess(const std::function<void()>& task,
                  const std::function<void(const std::string&)>& onFailure) {
    std::fflush(stdout);
    const pid_t id = fork();
    if (id == -1) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (id == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        int status = EXIT_SUCCESS;
        try {
            task();
        } catch (const std::exception& error) {
            onFailure(error.what());
            status = EXIT_FAILURE;
        }
        std::_Exit(status);
    }
    return id;
}

Supervision::Supervision(std::chrono::seconds timeLimit) : deadline_(start_ + timeLimit) {
    struct sigaction action = {};
    action.sa_handler = endBlockedHunt;
    sigaction(SIGALRM, &action, nullptr);
    alarm(static_cast<unsigned int>((timeLimit + graceBehindLimit).count()));
}

Supervision::~Supervision() {
    alarm(0);
    for (const Process& process : processes_) {
        if (!process.status) {
            kill(process.id, SIGKILL);
            waitpid(process.id, nullptr, 0);
        }
    }
}

pid_t Supervision::start(const std::function<void()>& task) {
    const pid_t id = forkProcess(task, [this](const std::string& text) { fail(text); });
    processes_.push_back({id, std::nullopt});
    return id;
}

void Supervision::startAttached(const std::atomic<uint32_t>& attached,
                                const std::function<void()>& task) {
    const uint32_t count = attached;
    start(task);
    await([&] { return attached == count + 1; },
          [count] { return std::to_string(count) + " processes attached"; });
}

std::string Supervision::progressOf(uint64_t done, uint64_t goal, const std::string& what) const {
    const auto rate = static_cast<uint64_t>(static_cast<double>(done) / seconds());
    return std::to_string(done) + " of " + std::to_string(goal) + " " + what + ", " +
           std::to_string(rate) + " a second";
}

void Supervision::show(const std::function<std::string()>& progress) {
    if (Clock::now() >= nextReport_ && isatty(STDOUT_FILENO) != 0) {
        nextReport_ = Clock::now() + progressInterval;
        std::printf("  %5.0f s  %s\n", seconds(), progress().c_str());
        std::fflush(stdout);
    }
}

void Supervision::await(const std::function<bool()>& isDone,
                        const std::function<std::string()>& progress) {
    while (!isDone()) {
        check();
        show(progress);
        std::this_thread::sleep_for(pollInterval);
    }
    check();
}

void Supervision::awaitEnds(const std::function<std::string()>& progress) {
    await(
        [this] {
            reap();
            return std::all_of(processes_.begin(), processes_.end(),
                               [](const Process& process) { return process.status.has_value(); });
        },
        progress);
}

void Supervision::awaitSoon(const std::function<bool()>& isDone, const std::string& what) {
    constexpr int looksBetweenChecks = 1000;
    for (int look = 1; !isDone(); ++look) {
        if (look % looksBetweenChecks == 0) {
            try {
                check();
            } catch (const HuntFailure& failure) {
                throw HuntFailure("while waiting for " + what + ": " + failure.what());
            }
        }
        sched_yield();
    }
}

void Supervision::fail(const std::string& text) {
    if (!failure_->isClaimed.exchange(true)) {
        std::strncpy(failure_->text, text.c_str(), longestText - 1);
        failure_->isWritten = true;
    }
}

double Supervision::seconds() const {
    return std::chrono::duration<double>(Clock::now() - start_).count();
}

void Supervision::check() {
    reap();
    require(!failure_->isWritten, failure_->text);
    for (const Process& process : processes_) {
        require(process.status.value_or(0) == 0, "process " + std::to_string(process.id) +
                                                     " ended with raw status " +
                                                     std::to_string(process.status.value_or(0)));
    }
    require(Clock::now() < deadline_, "the time is up");
}

void Supervision::reap() {
    for (Process& process : processes_) {
        int status = 0;
        if (!process.status && waitpid(process.id, &status, WNOHANG) == process.id) {
            process.status = status;
        }
    }
}

}  // namespace vantric_soak
