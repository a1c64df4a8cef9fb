// Where a virtual operation stands in its class's table (Itanium C++ ABI and its ARM variant).
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace vantric_test {

// The slot of the virtual member function that `member` points to, counted from the first one of
// the class; a destructor takes two slots. Throws std::logic_error for a function that is not
// virtual.
template <class Member>
std::size_t virtualSlot(Member member) {
    // A pointer to member function is a pair of a pointer or table offset, and an adjustment. One
    // low bit tells the two kinds apart: of the first word, or of the second where the lowest bit
    // of a code address is taken.
    std::uintptr_t words[2];
    static_assert(sizeof(member) == sizeof(words));
    std::memcpy(words, &member, sizeof(words));
#if defined(__arm__) || defined(__aarch64__)
    const bool isVirtual = (words[1] & 1) != 0;
    const std::uintptr_t offset = words[0];
#else
    const bool isVirtual = (words[0] & 1) != 0;
    const std::uintptr_t offset = words[0] - 1;
#endif
    if (!isVirtual) {
        throw std::logic_error("not a virtual function");
    }
    return offset / sizeof(void*);
}

// Calls the function in a slot of `object`'s table as one without arguments and result; for the two
// destructor slots, which no pointer to member can name.
inline void callVirtualSlot(void* object, std::size_t slot) {
    void** table = nullptr;
    std::memcpy(&table, object, sizeof(table));
    void (*function)(void*) = nullptr;
    std::memcpy(&function, table + slot, sizeof(function));
    function(object);
}

}  // namespace vantric_test
