// Other processes that do the measured work too, from construction until stop().
#pragma once

#include <atomic>
#include <memory>
#include <stdexcept>
#include <vector>

#include "bench/support/ForkedProcess.h"
#include "bench/support/SharedVariables.h"
#include "tests/support/Polling.h"

namespace vantric_bench {

class Contenders {
  public:
    // Every process calls `work(number)`, number from 1 to `count`, again and again. They are
    // stopped between two calls only: killed inside one, a process would leave a lock behind. All
    // of them are at work when the constructor returns.
    template <class Work>
    Contenders(int count, Work work) {
        for (int number = 1; number <= count; ++number) {
            processes_.push_back(std::make_unique<ForkedProcess>([this, number, &work] {
                work(number);
                ++shared_->working;
                while (!shared_->isStopping) {
                    work(number);
                }
            }));
        }
        if (!vantric_test::eventually([&] { return shared_->working == count; })) {
            throw std::runtime_error("the other processes do not start");
        }
    }

    // Throws std::runtime_error when one of them failed.
    void stop() {
        shared_->isStopping = true;
        for (const auto& process : processes_) {
            process->wait();
        }
    }

  private:
    struct Shared {
        std::atomic<int> working{0};
        std::atomic<bool> isStopping{false};
    };

    SharedVariables<Shared> shared_;
    std::vector<std::unique_ptr<ForkedProcess>> processes_;
};

}  // namespace vantric_bench
