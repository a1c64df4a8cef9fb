#include "tests/soak/Workers.h"

#include <sched.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "tests/support/Polling.h"

namespace vantric_soak {

namespace {

using vantric_test::eventually;

constexpr std::chrono::seconds patience(60);  // beyond the working time

}  // namespace

std::chrono::seconds workingTime() {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): there is one thread
    const char* text = std::getenv("VANTRIC_SOAK_SECONDS");
    return std::chrono::seconds(text != nullptr ? std::strtol(text, nullptr, 10) : 1);
}

void require(bool holds, const std::string& text) {
    if (!holds) {
        std::fprintf(stderr, "%s\n", text.c_str());
        std::_Exit(EXIT_FAILURE);
    }
}

pid_t startProcess(const std::function<void()>& task) {
    std::fflush(stdout);
    const pid_t id = fork();
    if (id == -1) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (id == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        try {
            task();
        } catch (const std::exception& error) {
            require(false, error.what());
        }
        std::_Exit(EXIT_SUCCESS);
    }
    return id;
}

Workers::~Workers() {
    for (const pid_t worker : running_) {
        kill(worker, SIGKILL);
        waitpid(worker, nullptr, 0);
    }
}

void Workers::start(const std::function<void()>& task) {
    running_.push_back(startProcess(task));
    ++started_;
    eventually([this] { return signals_->attached == started_ || !collect(); });
}

void Workers::attached() {
    ++signals_->attached;
    while (!signals_->hasStarted) {
        sched_yield();
    }
}

bool Workers::work(const std::function<bool()>& isEnough) {
    signals_->hasStarted = true;
    const auto end = std::chrono::steady_clock::now() + workingTime();
    const bool hasWorked = eventually(
        [&] { return !collect() || (std::chrono::steady_clock::now() >= end && isEnough()); },
        workingTime() + patience);
    signals_->isOver = true;
    const bool haveEnded = eventually([this] { return !collect() || running_.empty(); }, patience);
    return hasWorked && haveEnded && !hasFailed_;
}

bool Workers::collect() {
    const auto hasEnded = [this](pid_t worker) {
        int status = 0;
        if (waitpid(worker, &status, WNOHANG) != worker) {
            return false;
        }
        hasFailed_ = hasFailed_ || !WIFEXITED(status) || WEXITSTATUS(status) != EXIT_SUCCESS;
        return true;
    };
    running_.erase(std::remove_if(running_.begin(), running_.end(), hasEnded), running_.end());
    return !hasFailed_;
}

}  // namespace vantric_soak
