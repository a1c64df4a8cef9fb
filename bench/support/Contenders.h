// Other processes that do the measured work too, from construction until stop().
#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include "bench/support/ForkedProcess.h"
#include "bench/support/SharedVariables.h"

namespace vantric_bench {

class Contenders {
  public:
    // Every process calls `work(number)`, number from 1 to `count`, again and again. They are
    // stopped between two calls only: killed inside one, a process would leave a lock behind.
    template <class Work>
    Contenders(int count, Work work) {
        for (int number = 1; number <= count; ++number) {
            processes_.push_back(std::make_unique<ForkedProcess>([this, number, &work] {
                while (!shared_->isStopping) {
                    work(number);
                }
            }));
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
        std::atomic<bool> isStopping{false};
    };

    SharedVariables<Shared> shared_;
    std::vector<std::unique_ptr<ForkedProcess>> processes_;
};

}  // namespace vantric_bench
