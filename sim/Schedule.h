// Work that is due later, on the steady clock.
//
// Time is handed in, so that a test can drive it. Thread-safety: none.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <utility>

namespace vantric_sim {

using SteadyTime = std::chrono::steady_clock::time_point;

class Schedule {
  public:
    using Work = std::function<void()>;

    void add(SteadyTime due, Work work) { pending_.emplace(due, std::move(work)); }

    void clear() { pending_.clear(); }

    // Does what is due in order of time, and in order of arrival for equal times; also what that
    // work adds and is due already.
    void runDue(SteadyTime now) {
        while (!pending_.empty() && pending_.begin()->first <= now) {
            const Work work = std::move(pending_.begin()->second);
            pending_.erase(pending_.begin());
            work();
        }
    }

  private:
    std::multimap<SteadyTime, Work> pending_;
};

}  // namespace vantric_sim
