// Shows this process another wall clock. Linking WallClockAt.cpp puts it before the system's clock.
#pragma once

#include <cstdint>

namespace vantric_test {

class WallClockAt {
  public:
    // While the object lives, the wall clock stands at that second since the epoch. A process whose
    // own type of times is too short for it cannot read the clock. One object at a time, one
    // thread.
    explicit WallClockAt(int64_t seconds);
    ~WallClockAt();
    WallClockAt& operator=(WallClockAt&&) = delete;
};

}  // namespace vantric_test
