// Counts this test binary's allocations of the calling thread, and makes one fail.
#pragma once

#include <cstddef>

namespace vantric_test {

class Allocations {
  public:
    // Starts counting. With `failingAllocation` > 0 that allocation (1 is the next) throws
    // std::bad_alloc, later ones succeed again. One object at a time.
    explicit Allocations(std::size_t failingAllocation = 0);
    ~Allocations();
    Allocations& operator=(Allocations&&) = delete;

    std::size_t count() const;
    std::size_t largestSize() const;
};

}  // namespace vantric_test
