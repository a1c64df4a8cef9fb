// A process whose address space has no room left for large mappings.
#pragma once

#include <sys/mman.h>

#include <cstddef>
#include <utility>
#include <vector>

namespace vantric_test {

class FullAddressSpace {
  public:
    // While the object lives, no mapping of `size` bytes finds a place, but many smaller ones do.
    explicit FullAddressSpace(std::size_t size) {
        constexpr std::size_t largest = ~(~std::size_t{0} >> 1) >> 16 * (sizeof(void*) / 8);
        for (std::size_t length = largest; length >= size; length /= 2) {
            while (reserve(length)) {
            }
        }
    }

    ~FullAddressSpace() {
        for (const auto& [address, length] : reserved_) {
            munmap(address, length);
        }
    }

    FullAddressSpace(const FullAddressSpace&) = delete;
    FullAddressSpace& operator=(const FullAddressSpace&) = delete;

  private:
    bool reserve(std::size_t length) {
        void* address =
            mmap(nullptr, length, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (address == MAP_FAILED) {
            return false;
        }
        reserved_.emplace_back(address, length);
        return true;
    }

    std::vector<std::pair<void*, std::size_t>> reserved_;
};

}  // namespace vantric_test
