// Opens, creates, sizes and maps named POSIX shared-memory objects and counts who is attached.
//
// Image of an object: an attach count (32-bit unsigned, all processes together), then the payload.
// The first to attach zeroes the payload, after the count is set and without a lock: who attaches
// at the same moment may see it happen. The last to detach removes the object. A process that dies
// without detaching leaves its count behind, and the object then outlives everybody.
// Ownership: a provider keeps its segments mapped until it is destroyed; pointers from map() are
// valid until then.
// Thread-safety: none, a provider belongs to one thread. Process-safety: the attach count changes
// only under the lock named after the segment plus "ProviderLock"; the payload has no lock here.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace com_qel::Orvane::Vantric::ClientServer {

class SharedMemoryProvider {
  public:
    // Touches nothing outside the process.
    SharedMemoryProvider();

    // Detaches from every segment, unmaps it, and removes it when nobody is left. Never throws.
    ~SharedMemoryProvider();

    SharedMemoryProvider(const SharedMemoryProvider&) = delete;
    SharedMemoryProvider& operator=(const SharedMemoryProvider&) = delete;

    // Maps the segment `name` (passed on verbatim) with a payload of `size` bytes and returns the
    // payload's address, which is 4-aligned. Creates the object when it is missing, readable and
    // writable for its owner only, and resizes one of another size.
    // Throws std::runtime_error "Failed to open shared mem file, error: " or "Failed to map to
    // shared memory, error: ", each followed by the system's text; the latter also when the system
    // has no room for the object. The provider is as before then; a created object stays.
    void* map(uint32_t size, const std::string& name);

  private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace com_qel::Orvane::Vantric::ClientServer
