/// \class com_qel::Orvane::Vantric::ClientServer::SharedMemoryCircularBuffer
/// A ring of elements in shared memory, with many producers and one consumer.
///
/// The first producer to attach sets the ring up, and does so again (discarding what is unread)
/// whenever a producer comes while none is attached. A consumer alone never sets it up.
/// Ownership: owns its mapping; detaches its role and the mapping when destroyed.
/// Thread-safety: none, an object belongs to one thread. Process-safety: every operation is one
/// hold of the contents lock, so runs of elements from several producers do not interleave while
/// the lock excludes. A process killed inside an operation leaves the ring as before it or as after
/// it; one killed while it sets the ring up may also leave it unusable until the next producer.
/// Other processes write the header: it is copied once under the lock and the copy judged; a header
/// that cannot be true makes the ring unusable, not the process.
#pragma once

#include <algorithm>
#include <atomic>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <string>
#include <type_traits>

#include "Vantric/ClientServer/SharedMemoryDirectAccessor.h"
#include "Vantric/ClientServer/SharedMemoryProvider.h"

namespace com_qel::Orvane::Vantric::ClientServer {

template <class T, std::size_t N>
class SharedMemoryCircularBuffer {
    static_assert(std::is_trivially_copyable_v<T>, "other processes share the bytes of T");
    static_assert(std::is_copy_assignable_v<T>, "elements are assigned");
    static_assert(N > 0 && N <= UINT32_MAX);

  public:
    /// The image in shared memory, after the object's attach count. Every user writes there.
    struct Memory {
        uint32_t initialized;  ///< 1 when the ring is set up, anything else when not
        uint32_t producers;    ///< attached, those included that died without detaching
        uint32_t consumers;    ///< attached, those included that died without detaching
        uint32_t readIndex;    ///< of the next element to read
        uint32_t writeIndex;   ///< of the next element to write
        uint32_t capacity;     ///< elements; N after set-up
        uint8_t full;          ///< 1 when equal indices mean a full ring
        uint8_t empty;         ///< 1 when equal indices mean an empty ring
        T data[N];             ///< the elements
    };

    /// The segment and the lock of its contents.
    using Accessor = SharedMemoryDirectAccessor<Memory, SharedMemoryProvider>;

    /// Attaches to the ring `name` as consumer or as producer, creating the object when it is
    /// missing. Passes on what SharedMemoryProvider::map() throws.
    SharedMemoryCircularBuffer(const std::string& name, bool consumer)
        : accessor_(name), consumer_(consumer) {
        const std::lock_guard<MultiProcessLock> guard(accessor_.lock());
        Memory& memory = *accessor_.memory();
        if (consumer_) {
            ++memory.consumers;
            return;
        }
        if (memory.producers == 0) {
            setUp(memory);
        }
        ++memory.producers;
    }

    /// Detaches; what is in the ring stays there while another user is attached.
    virtual ~SharedMemoryCircularBuffer() {
        const std::lock_guard<MultiProcessLock> guard(accessor_.lock());
        Memory& memory = *accessor_.memory();
        uint32_t& attached = consumer_ ? memory.consumers : memory.producers;
        if (attached != 0) {
            --attached;
        }
    }

    SharedMemoryCircularBuffer(const SharedMemoryCircularBuffer&) = delete;
    SharedMemoryCircularBuffer& operator=(const SharedMemoryCircularBuffer&) = delete;

    /// Appends `count` elements (at least one) in one run, wrapping at the end of the ring. False,
    /// with nothing written, when the ring is unusable or has no room for all of them.
    bool push(const T* elements, uint32_t count) {
        assert(count > 0);
        const std::lock_guard<MultiProcessLock> guard(accessor_.lock());
        Memory& memory = *accessor_.memory();
        const Header header = headerOf(memory);
        if (!isUsable(header) || count > freeElements(header)) {
            return false;
        }
        const uint32_t untilEnd = std::min(header.capacity - header.writeIndex, count);
        std::copy_n(elements, untilEnd, memory.data + header.writeIndex);
        if (count > untilEnd) {
            std::copy_n(elements + untilEnd, count - untilEnd, memory.data);
        }
        const uint32_t writeIndex = indexAfter(header.writeIndex, count, header.capacity);
        if (writeIndex == header.readIndex) {
            storeEqual(memory, memory.writeIndex, writeIndex, {1, 0});
        } else {
            storeDifferent(memory, memory.writeIndex, writeIndex);
        }
        return true;
    }

    /// Takes `count` elements (at least one) out. False, with nothing taken and `elements`
    /// untouched, when the ring is unusable or holds fewer.
    bool pop(T* elements, uint32_t count) {
        assert(count > 0);
        const std::lock_guard<MultiProcessLock> guard(accessor_.lock());
        Memory& memory = *accessor_.memory();
        const Header header = headerOf(memory);
        if (!isUsable(header) || count > usedElements(header)) {
            return false;
        }
        const uint32_t untilEnd = std::min(header.capacity - header.readIndex, count);
        std::copy_n(memory.data + header.readIndex, untilEnd, elements);
        if (count > untilEnd) {
            std::copy_n(memory.data, count - untilEnd, elements + untilEnd);
        }
        const uint32_t readIndex = indexAfter(header.readIndex, count, header.capacity);
        if (readIndex == header.writeIndex) {
            storeEqual(memory, memory.readIndex, readIndex, {0, 1});
        } else {
            storeDifferent(memory, memory.readIndex, readIndex);
        }
        return true;
    }

    /// The segment itself, for owners that need more than runs of elements; lives as long as the
    /// ring.
    Accessor& accessor() { return accessor_; }

  private:
    /// What push() and pop() decide upon. Copied through a volatile reference, so that each
    /// decision rests on one read of memory that a broken process may be changing.
    struct Header {
        uint32_t initialized;
        uint32_t readIndex;
        uint32_t writeIndex;
        uint32_t capacity;
        uint8_t full;
        uint8_t empty;
    };

    struct Flags {
        uint8_t full;
        uint8_t empty;
    };
    static_assert(offsetof(Memory, empty) == offsetof(Memory, full) + offsetof(Flags, empty));
    static_assert(offsetof(Memory, full) % sizeof(Flags) == 0, "one store writes both flags");

    static constexpr uint32_t setUpMark = 1;

    static Header headerOf(const volatile Memory& memory) {
        return {memory.initialized, memory.readIndex, memory.writeIndex,
                memory.capacity,    memory.full,      memory.empty};
    }

    static bool isUsable(const Header& header) {
        return header.initialized == setUpMark && header.capacity <= N &&
               header.readIndex < header.capacity && header.writeIndex < header.capacity;
    }

    static uint32_t usedElements(const Header& header) {
        if (header.readIndex == header.writeIndex) {
            return header.full != 0 ? header.capacity : 0;
        }
        return distance(header.readIndex, header.writeIndex, header.capacity);
    }

    static uint32_t freeElements(const Header& header) {
        if (header.readIndex == header.writeIndex) {
            return header.empty != 0 ? header.capacity : 0;
        }
        return distance(header.writeIndex, header.readIndex, header.capacity);
    }

    /// From one index forward to another one.
    static uint32_t distance(uint32_t from, uint32_t to, uint32_t capacity) {
        return from < to ? to - from : capacity - (from - to);
    }

    /// `index` lies in the ring and `count` is at most the capacity: one turn brings it back.
    static uint32_t indexAfter(uint32_t index, uint32_t count, uint32_t capacity) {
        const uint32_t untilEnd = capacity - index;
        return count < untilEnd ? index + count : count - untilEnd;
    }

    /// A process may be killed between any two stores: the ring is unusable while its header
    /// changes, and without a producer counted the next producer sets it up again.
    static void setUp(Memory& memory) {
        memory.initialized = 0;
        endStores();
        memory.readIndex = 0;
        memory.writeIndex = 0;
        memory.capacity = static_cast<uint32_t>(N);
        memory.full = 0;
        memory.empty = 1;
        endStores();
        memory.initialized = setUpMark;
        endStores();
    }

    /// Both store what an operation has changed, after its elements. A process may be killed
    /// between any two stores, and the ring then counts as before the operation or as after it: the
    /// flags change, both at once, while the indices differ and give them no meaning.
    static void storeEqual(Memory& memory, uint32_t& index, uint32_t value, const Flags& flags) {
        endStores();
        storeFlags(memory, flags);
        endStores();
        index = value;
    }

    static void storeDifferent(Memory& memory, uint32_t& index, uint32_t value) {
        endStores();
        index = value;
        endStores();
        storeFlags(memory, {0, 0});
    }

    /// A run of the whole capacity leaves equal indices equal: then this one store is the change.
    static void storeFlags(Memory& memory, const Flags& flags) {
        auto* const bytes = static_cast<unsigned char*>(static_cast<void*>(&memory));
        std::memcpy(__builtin_assume_aligned(bytes + offsetof(Memory, full), sizeof(flags)), &flags,
                    sizeof(flags));
    }

    /// Keeps the compiler from moving a store past this point; costs no instruction.
    static void endStores() { std::atomic_signal_fence(std::memory_order_seq_cst); }

    Accessor accessor_;
    bool consumer_;
};

}  // namespace com_qel::Orvane::Vantric::ClientServer
