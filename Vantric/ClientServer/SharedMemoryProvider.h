/// \class com_qel::Orvane::Vantric::ClientServer::SharedMemoryProvider
/// Opens, creates, sizes and maps named POSIX shared-memory objects and counts who is attached.
///
/// Image of an object: an attach count (32-bit unsigned, all processes together), then the payload.
/// The first to attach zeroes the payload, after the count is set and without a lock: a process
/// that attaches at the same moment may see the payload change. The last to detach removes the
/// object. A process that dies without detaching leaves its count, and the object is then never
/// removed. Attaching while the last user detaches: a process that opens the object just before the
/// other removes its name stays attached to an object without a name, and later processes create a
/// new one. Nothing reports this. A server that stays attached all the time prevents it. One that
/// restarts can read the inode of the name (stat() of /dev/shm/NAME) before and after it attaches,
/// attach again while the two differ, and attach again if the inode has changed when it publishes.
/// No descriptor of the object is exposed; the mapping's own inode is in its line of
/// /proc/self/maps, which also says "(deleted)" once the name is lost.
///
/// Ownership: a provider keeps its segments mapped until it is destroyed; pointers from map() are
/// valid until then. fork(): the child inherits the mappings but is not counted. A child that
/// destroys its copy detaches the parent, and may remove the object; let it call exec() or _exit().
/// Thread-safety: none, a provider belongs to one thread. Process-safety: the attach count changes
/// only under the lock named after the segment plus "ProviderLock"; the payload has no lock here.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "CoreMisc/Export.h"

namespace com_qel::Orvane::Vantric::ClientServer {

class VANTRIC_EXPORT SharedMemoryProvider {
  public:
    /// Touches nothing outside the process.
    SharedMemoryProvider();

    /// Detaches from every segment, unmaps it, and removes it after the last user. Never throws.
    ~SharedMemoryProvider();

    SharedMemoryProvider(const SharedMemoryProvider&) = delete;
    SharedMemoryProvider& operator=(const SharedMemoryProvider&) = delete;

    /// Maps the segment `name` (passed on verbatim) with a payload of `size` bytes and returns the
    /// payload's address, which is 4-aligned. Creates the object when it is missing, readable and
    /// writable for its owner only. Resizes one of another size, for all who have it mapped: after
    /// it has shrunk, another process that reads past its new end finds zeros up to the end of the
    /// page, and is killed by SIGBUS beyond.
    /// Throws std::runtime_error "Failed to open shared mem file, error: " or "Failed to map to
    /// shared memory, error: ", each followed by the system's text; the latter also when the system
    /// has no room for the object or cannot make one so long. The provider is then as before; an
    /// object that was created stays. A limit on file sizes below the object's length kills the
    /// process by SIGXFSZ; while that signal is ignored, it is the second error.
    void* map(uint32_t size, const std::string& name);

  private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace com_qel::Orvane::Vantric::ClientServer
