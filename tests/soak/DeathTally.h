// Where in an exchange death came, lock by lock.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>

#include "tests/soak/StormClient.h"

namespace vantric_soak {

class DeathTally {
  public:
    void add(const ClientAccount& account) {
        bool isIdle = true;
        for (std::size_t lock = 0; lock < lockCount; ++lock) {
            const LockPhase phase = account.locks.at(lock).load().phase;
            ++rows_.at(lock).at(static_cast<std::size_t>(phase));
            isIdle = isIdle && phase == LockPhase::Idle;
        }
        idle_ += isIdle ? 1 : 0;
    }

    // Whether some death came inside the critical section of each lock.
    bool coversEveryLock() const {
        bool covers = true;
        for (const Row& row : rows_) {
            covers =
                covers && row[index(LockPhase::Holding)] + row[index(LockPhase::Releasing)] != 0;
        }
        return covers;
    }

    void print() const {
        std::printf("  %-28s %8s %8s %8s %8s %8s\n", "death came", "before", "checked,", "checked,",
                    "lock", "section");
        std::printf("  %-28s %8s %8s %8s %8s %8s\n", "", "taking", "taken", "found 0", "held",
                    "complete");
        for (std::size_t lock = 0; lock < lockCount; ++lock) {
            const Row& row = rows_.at(lock);
            std::printf("  %-28s %8u %8u %8u %8u %8u\n", lockName(lock).c_str(),
                        row[index(LockPhase::Checking)] + row[index(LockPhase::Waiting)],
                        row[index(LockPhase::CheckTook)], row[index(LockPhase::CheckFailed)],
                        row[index(LockPhase::Holding)], row[index(LockPhase::Releasing)]);
        }
        std::printf("  %-28s %8u\n", "between two locks", idle_);
    }

  private:
    static constexpr std::size_t phaseCount = 7;
    using Row = std::array<uint32_t, phaseCount>;

    static constexpr std::size_t index(LockPhase phase) { return static_cast<std::size_t>(phase); }

    std::array<Row, lockCount> rows_ = {};
    uint32_t idle_ = 0;
};

}  // namespace vantric_soak
