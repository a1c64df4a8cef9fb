// A copy of this process that runs one function until it is killed: the server of a peer.
#pragma once

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <stdexcept>

namespace vantric_bench {

class ForkedProcess {
  public:
    // The copy ends when `function` returns, or with this process. Throws std::runtime_error when
    // the system has no room for a process.
    template <class Function>
    explicit ForkedProcess(const Function& function) : pid_(fork()) {
        if (pid_ == -1) {
            throw std::runtime_error("cannot start a process");
        }
        if (pid_ == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            try {
                function();
            } catch (const std::exception& error) {
                std::fprintf(stderr, "%s\n", error.what());
            }
            _exit(1);  // the objects belong to the original, which destroys them
        }
    }
    ~ForkedProcess() {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
    ForkedProcess& operator=(ForkedProcess&&) = delete;

  private:
    pid_t pid_;
};

}  // namespace vantric_bench
