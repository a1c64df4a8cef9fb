/// \class com_qel::Orvane::Vantric::ClientServer::SharedMemoryLayout
/// One state segment: a record after a header that says which layout it has and whether it is
/// valid.
///
/// The server publishes, clients read. Both hold the contents lock, for which they wait without a
/// time limit, so a copy is not torn, except in these cases: a process that constructs the lock
/// (every connecting client does) releases it even while another process holds it; a wait that a
/// signal interrupts goes on without it; a process that could not open the lock never takes it, and
/// only the log shows it; a lock that an earlier run left above 1 admits several processes (see
/// Vantric/Utils/MultiProcessLock.h); and a process killed inside publish() leaves a record that
/// was valid before torn, until the next publish(). Ownership: owns its mapping; nothing refers to
/// the segment once the object is gone. Thread-safety: none, an object belongs to one thread.
/// Process-safety: read() and publish() take the contents lock for the header and one fixed-size
/// copy only.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <string>
#include <type_traits>

#include "Vantric/ClientServer/SharedMemoryDirectAccessor.h"

namespace com_qel::Orvane::Vantric::ClientServer {

template <class T, class Provider>
class SharedMemoryLayout {
  public:
#pragma pack(push, 1)
    /// The image in shared memory, after the object's attach count. The server writes it; a new
    /// segment is all zero.
    struct Layout {
        uint32_t version;     ///< of the layout
        uint8_t valid;        ///< 1 when a record has been published, anything else when not
        uint8_t reserved[3];  ///< never touched by a client
        T record;             ///< what is published
    };
#pragma pack(pop)

    static_assert(alignof(T) <= 4, "a record follows the 4 bytes of the attach count");
    static_assert(std::is_trivially_copyable_v<Layout>);
    static_assert(offsetof(Layout, version) == 0);
    static_assert(offsetof(Layout, valid) == 4);
    static_assert(offsetof(Layout, reserved) == 5);
    static_assert(offsetof(Layout, record) == 8);
    static_assert(sizeof(Layout) == 8 + sizeof(T));

    /// The segment and the lock of its contents.
    using Accessor = SharedMemoryDirectAccessor<Layout, Provider>;

    /// Maps the segment `name`, creating it when it is missing. `version` is the one layout version
    /// that this process reads and writes. Passes on what the provider throws.
    SharedMemoryLayout(const std::string& name, uint32_t version)
        : version_(version), accessor_(name) {}

    virtual ~SharedMemoryLayout() = default;

    SharedMemoryLayout(const SharedMemoryLayout&) = delete;
    SharedMemoryLayout& operator=(const SharedMemoryLayout&) = delete;

    /// Whether a record of the layout `version` may be read: it must be this object's own. read()
    /// asks under the contents lock.
    virtual bool isCompatibleVersion(uint32_t version) {
        return version == version_;
    }

    /// The reader's side: copies the published record to `record` and returns true. Without a valid
    /// record of a compatible version `record` is all zero and the result false; it is all zero as
    /// well when isCompatibleVersion() throws, which is passed on.
    bool read(T& record) {
        ZeroUnlessCopied result = {record};
        const std::lock_guard<MultiProcessLock> guard(accessor_.lock());
        const Layout* layout = accessor_.memory();
        const uint32_t version = layout->version;
        const uint8_t valid = layout->valid;
        if (isCompatibleVersion(version) && valid == validMark) {
            std::memcpy(static_cast<void*>(&record), &layout->record, sizeof(record));
            result.isCopied = true;
        }
        return result.isCopied;
    }

    /// The writer's side: publishes `record` under this object's version.
    void publish(const T& record) {
        const std::lock_guard<MultiProcessLock> guard(accessor_.lock());
        Layout* layout = accessor_.memory();
        std::memcpy(static_cast<void*>(&layout->record), &record, sizeof(record));
        // The compiler must keep this order for a process that is killed in between.
        std::atomic_signal_fence(std::memory_order_seq_cst);
        layout->version = version_;
        layout->valid = validMark;
    }

    /// The segment itself, for owners that need more than whole records; lives as long as this
    /// object.
    Accessor& accessor() {
        return accessor_;
    }

  private:
    static constexpr uint8_t validMark = 1;

    /// Outlives the hold of the lock, which other processes wait for.
    struct ZeroUnlessCopied {
        ~ZeroUnlessCopied() {
            if (!isCopied) {
                std::memset(static_cast<void*>(&record), 0, sizeof(record));
            }
        }

        T& record;
        bool isCopied = false;
    };

    uint32_t version_;
    Accessor accessor_;
};

}  // namespace com_qel::Orvane::Vantric::ClientServer
