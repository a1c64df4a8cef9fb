#include "tests/support/Allocations.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

thread_local bool isCounting = false;
thread_local std::size_t allocationCount = 0;
thread_local std::size_t largestAllocation = 0;
thread_local std::size_t allocationToFail = 0;

void* allocate(std::size_t size) {
    if (isCounting) {
        ++allocationCount;
        largestAllocation = std::max(largestAllocation, size);
        if (allocationCount == allocationToFail) {
            throw std::bad_alloc();
        }
    }
    void* memory = std::malloc(size != 0 ? size : 1);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

}  // namespace

namespace vantric_test {

Allocations::Allocations(std::size_t failingAllocation) {
    allocationCount = 0;
    largestAllocation = 0;
    allocationToFail = failingAllocation;
    isCounting = true;
}

Allocations::~Allocations() {
    isCounting = false;
}

std::size_t Allocations::count() const {
    return allocationCount;
}

std::size_t Allocations::largestSize() const {
    return largestAllocation;
}

}  // namespace vantric_test

// All forms are replaced, so that allocation and release always fit each other.
void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size != 0 ? size : 1);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size != 0 ? size : 1);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
