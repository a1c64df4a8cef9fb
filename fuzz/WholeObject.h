// A shared-memory object together with the rest of its last page, which the product's mappings
// reach as well without having any business there.
#pragma once

#include <cstddef>
#include <string>

#include "tests/support/RawSegment.h"

namespace vantric_fuzz {

using vantric_test::Bytes;

class WholeObject {
  public:
    // Throws std::runtime_error when the object is not of this size. From now on the sanitizers
    // report whoever touches what lies behind the object through the mappings of it that exist.
    WholeObject(const std::string& name, std::size_t size);

    // Unmapped when the process ends: the mark behind the object must not outlive the mappings.

    WholeObject(const WholeObject&) = delete;
    WholeObject& operator=(const WholeObject&) = delete;

    // Both from `offset` on; throw std::out_of_range when that leaves the object.
    void write(std::size_t offset, const Bytes& bytes);
    bool holds(std::size_t offset, const Bytes& bytes) const;

    // Whether anybody has written behind the object.
    bool isTailUntouched() const;

  private:
    void check(std::size_t offset, std::size_t count) const;

    std::size_t size_;
    std::size_t length_;  // in whole pages
    unsigned char* address_;
};

}  // namespace vantric_fuzz
