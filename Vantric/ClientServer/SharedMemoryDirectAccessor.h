/// \class com_qel::Orvane::Vantric::ClientServer::SharedMemoryDirectAccessor
/// One mapped segment and the lock that guards its contents.
///
/// Ownership: the accessor owns the provider that maps the segment, so memory() and lock() are
/// valid for the accessor's life. Destruction closes the lock, then detaches from the segment.
/// Thread-safety: none of its own. Process-safety: take lock() around every access to memory();
/// other processes write there, so copy first and judge the copy. Never hold two segments' locks at
/// once.
#pragma once

#include <cstdint>
#include <string>
#include <type_traits>

#include "Vantric/Utils/MultiProcessLock.h"

namespace com_qel::Orvane::Vantric::ClientServer {

template <class M, class Provider>
class SharedMemoryDirectAccessor {
    static_assert(std::is_trivially_copyable_v<M>, "other processes share the bytes of M");
    static_assert(alignof(M) <= 4, "a payload follows the 4 bytes of the attach count");
    static constexpr auto size = static_cast<uint32_t>(sizeof(M));
    static_assert(size == sizeof(M), "a provider counts the bytes of a payload in 32 bits");

  public:
    /// Maps the segment `name` with room for one M, which must not need more than 4-byte alignment;
    /// the lock is named after the segment plus "Lock". Passes on what Provider::map() throws.
    explicit SharedMemoryDirectAccessor(const std::string& name) : lock_(name + "Lock") {
        memory_ = static_cast<M*>(provider_.map(size, name));
    }

    virtual ~SharedMemoryDirectAccessor() = default;

    SharedMemoryDirectAccessor(const SharedMemoryDirectAccessor&) = delete;
    SharedMemoryDirectAccessor& operator=(const SharedMemoryDirectAccessor&) = delete;

    /// What is mapped; never null.
    M* memory() { return memory_; }

    /// The lock of the contents.
    MultiProcessLock& lock() { return lock_; }

  private:
    M* memory_ = nullptr;
    Provider provider_;
    MultiProcessLock lock_;
};

}  // namespace com_qel::Orvane::Vantric::ClientServer
