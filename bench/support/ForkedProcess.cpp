#include "bench/support/ForkedProcess.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <stdexcept>

namespace vantric_bench {

namespace {

[[noreturn]] void runInCopy(const std::function<void()>& function) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    try {
        function();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        _exit(1);
    }
    _exit(0);  // the original's objects are the original's to destroy
}

}  // namespace

ForkedProcess::ForkedProcess(const std::function<void()>& function) : pid_(fork()) {
    if (pid_ == -1) {
        throw std::runtime_error("cannot start a process");
    }
    if (pid_ == 0) {
        runInCopy(function);
    }
}

ForkedProcess::~ForkedProcess() {
    if (pid_ > 0) {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
}

void ForkedProcess::wait() {
    int status = 0;
    waitpid(pid_, &status, 0);
    pid_ = 0;
    if (status != 0) {
        throw std::runtime_error("a process failed");
    }
}

}  // namespace vantric_bench
