// Watches over the processes of one hunt: starts them, hears their failures, reports progress and
// ends them when the time is up.
#pragma once

#include <sys/types.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/soak/SharedArea.h"

namespace vantric_soak {

using Clock = std::chrono::steady_clock;

// A property that did not hold; the text says which.
struct HuntFailure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

inline void require(bool holds, const std::string& property) {
    if (!holds) {
        throw HuntFailure(property);
    }
}

// Runs `task` in a forked process and returns its id. The process ends with status 0, or with 1
// after `onFailure` was given the text of the exception that ended the task.
pid_t forkProcess(const std::function<void()>& task,
                  const std::function<void(const std::string&)>& onFailure);

class Supervision {
  public:
    // One to a process. Should this process itself block for ever, an alarm ends it with status 1
    // soon after the time limit, and all it has started with it.
    explicit Supervision(std::chrono::seconds timeLimit);

    // Kills and reaps the processes that are still running.
    ~Supervision();

    Supervision(const Supervision&) = delete;
    Supervision& operator=(const Supervision&) = delete;

    // Runs `task` in a process of its own; an exception out of it fails the hunt.
    pid_t start(const std::function<void()>& task);

    // The same, and waits until the process has counted itself in. Constructing a segment releases
    // its locks, so everybody attaches before anybody uses them.
    void startAttached(const std::atomic<uint32_t>& attached, const std::function<void()>& task);

    // "12 of 300 frames, 4 a second".
    std::string progressOf(uint64_t done, uint64_t goal, const std::string& what) const;

    // Shows `progress` on a terminal unless that was done within the last seconds.
    void show(const std::function<std::string()>& progress);

    // Waits until `isDone`, showing `progress` every few seconds on a terminal. Throws HuntFailure
    // when a process fails or the time is up.
    void await(const std::function<bool()>& isDone, const std::function<std::string()>& progress);

    // The same until every started process has ended well.
    void awaitEnds(const std::function<std::string()>& progress);

    // Waits for something that takes microseconds, without sleeping.
    void awaitSoon(const std::function<bool()>& isDone, const std::string& what);

    // Tells the hunt's failure, from any of its processes; the first one counts.
    void fail(const std::string& text);

    // Throws HuntFailure when a process has failed or the time is up.
    void check();

    double seconds() const;

  private:
    static constexpr std::size_t longestText = 400;

    struct FirstFailure {
        std::atomic<bool> isClaimed{false};
        std::atomic<bool> isWritten{false};
        char text[longestText] = {};
    };

    struct Process {
        pid_t id;
        std::optional<int> status;
    };

    void reap();

    const Clock::time_point start_ = Clock::now();
    const Clock::time_point deadline_;
    SharedArea<FirstFailure> failure_;
    std::vector<Process> processes_;
    Clock::time_point nextReport_ = start_;
};

}  // namespace vantric_soak
