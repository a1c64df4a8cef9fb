// A copy of this process that runs one function. It shares the private /dev/shm and whatever memory
// was mapped as shared before.
#pragma once

#include <sys/types.h>

#include <functional>

namespace vantric_bench {

class ForkedProcess {
  public:
    // Throws std::runtime_error when the system has no room for a process. The copy ends when
    // `function` returns, or with this process.
    explicit ForkedProcess(const std::function<void()>& function);

    // Kills and reaps a process that was not waited for.
    ~ForkedProcess();

    ForkedProcess(const ForkedProcess&) = delete;
    ForkedProcess& operator=(const ForkedProcess&) = delete;

    // Waits for the end of a function that returns by itself.
    void wait();

  private:
    pid_t pid_;
};

}  // namespace vantric_bench
