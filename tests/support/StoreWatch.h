// Stops the program before every store into some pages of memory.
//
// The pages are write-protected. A store that faults is reported, carried out alone and followed by
// the protection again, so no store goes unnoticed, whichever instruction makes it.
#pragma once

#include <cstddef>
#include <functional>

namespace vantric_test {

class StoreWatch {
  public:
    // Calls `beforeStore` from a signal handler, before every store of this thread into the pages
    // that hold [address, address + length), while the object lives. One watch at a time.
    StoreWatch(void* address, std::size_t length, std::function<void()> beforeStore);
    ~StoreWatch();
    StoreWatch& operator=(StoreWatch&&) = delete;
};

}  // namespace vantric_test
