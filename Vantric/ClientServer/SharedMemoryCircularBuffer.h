// A ring of elements in shared memory, with many producers and one consumer.
//
// The first producer to attach sets the ring up, and does so again (discarding what is unread)
// whenever a producer comes while none is attached. A consumer alone never sets it up.
// Ownership: owns its mapping; detaches its role and the mapping when destroyed.
// Thread-safety: none, an object belongs to one thread. Process-safety: every operation is one hold
// of the contents lock, so runs of elements from several producers never interleave. The header in
// shared memory is foreign: it is copied once under the lock and the copy judged; a header that
// cannot be true makes the ring unusable, not the process.
#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
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
    // The image in shared memory, behind the object's attach count. Every user writes there.
    struct Memory {
        uint32_t initialized;  // 1 when the ring is set up, anything else when not
        uint32_t producers;    // attached, those included that died without detaching
        uint32_t consumers;    // attached, those included that died without detaching
        uint32_t readIndex;    // of the next element to read
        uint32_t writeIndex;   // of the next element to write
        uint32_t capacity;     // elements; N after set-up
        uint8_t full;          // 1 when equal indices mean a full ring
        uint8_t empty;         // 1 when equal indices mean an empty ring
        T data[N];             // the elements
    };

    // The segment and the lock of its contents.
    using Accessor = SharedMemoryDirectAccessor<Memory, SharedMemoryProvider>;

    // Attaches to the ring `name` as consumer or as producer, creating the object when it is
    // missing. Passes on what SharedMemoryProvider::map() throws.
    SharedMemoryCircularBuffer(const std::string& name, bool consumer)
        : accessor_(name), consumer_(consumer) {
        const std::lock_guard<MultiProcessLock> guard(accessor_.lock());
        Memory& memory = *accessor_.memory();
        if (consumer_) {
            ++memory.consumers;
            return;
        }
        if (memory.producers == 0) {
            memory.initialized = setUpMark;
            memory.readIndex = 0;
            memory.writeIndex = 0;
            memory.capacity = static_cast<uint32_t>(N);
            memory.full = 0;
            memory.empty = 1;
        }
        ++memory.producers;
    }

    // Detaches; what is in the ring stays there while anybody else is attached.
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

    // Writes `count` elements (at least one) in one run, wrapping at the end of the ring. False,
    // with nothing written, when the ring is unusable or has no room for all of them.
    bool write(const T* elements, uint32_t count) {
        assert(count > 0);
        const std::lock_guard<MultiProcessLock> guard(accessor_.lock());
        Memory& memory = *accessor_.memory();
        const Header header = headerOf(memory);
        if (!isUsable(header) || count > header.capacity) {
            return false;
        }
        const uint32_t free = freeElements(header);
        if (count > free && (free != 0 || header.empty == 0)) {
            return false;
        }
        const uint32_t untilEnd = std::min(header.capacity - header.writeIndex, count);
        std::copy_n(elements, untilEnd, memory.data + header.writeIndex);
        if (count > untilEnd) {
            std::copy_n(elements + untilEnd, count - untilEnd, memory.data);
        }
        const uint32_t writeIndex = indexBehind(header.writeIndex, count, header.capacity);
        memory.writeIndex = writeIndex;
        memory.empty = 0;
        memory.full = writeIndex == header.readIndex ? 1 : 0;
        return true;
    }

    // Takes `count` elements (at least one) out. False, with nothing taken and `elements`
    // untouched, when the ring is unusable or holds fewer.
    bool read(T* elements, uint32_t count) {
        assert(count > 0);
        const std::lock_guard<MultiProcessLock> guard(accessor_.lock());
        Memory& memory = *accessor_.memory();
        const Header header = headerOf(memory);
        if (!isUsable(header) || count > header.capacity) {
            return false;
        }
        const uint32_t used = usedElements(header);
        if (count > used && (used != 0 || header.full == 0)) {
            return false;
        }
        const uint32_t untilEnd = std::min(header.capacity - header.readIndex, count);
        std::copy_n(memory.data + header.readIndex, untilEnd, elements);
        if (count > untilEnd) {
            std::copy_n(memory.data, count - untilEnd, elements + untilEnd);
        }
        const uint32_t readIndex = indexBehind(header.readIndex, count, header.capacity);
        memory.readIndex = readIndex;
        memory.full = 0;
        memory.empty = readIndex == header.writeIndex ? 1 : 0;
        return true;
    }

    // The segment itself, for owners that need more than runs of elements; lives as long as the
    // ring.
    Accessor& accessor() { return accessor_; }

  private:
    // What write() and read() decide upon. Copied through a volatile reference, so that no decision
    // rests on a second look at memory that a broken process may be changing.
    struct Header {
        uint32_t initialized;
        uint32_t readIndex;
        uint32_t writeIndex;
        uint32_t capacity;
        uint8_t full;
        uint8_t empty;
    };

    static constexpr uint32_t setUpMark = 1;

    static Header headerOf(const volatile Memory& memory) {
        return {memory.initialized, memory.readIndex, memory.writeIndex,
                memory.capacity,    memory.full,      memory.empty};
    }

    static bool isUsable(const Header& header) {
        return header.initialized == setUpMark && header.capacity <= N &&
               header.readIndex < header.capacity && header.writeIndex < header.capacity;
    }

    // 0 for equal indices; the flags then tell an empty ring from a full one.
    static uint32_t usedElements(const Header& header) {
        return header.readIndex <= header.writeIndex
                   ? header.writeIndex - header.readIndex
                   : header.capacity + header.writeIndex - header.readIndex;
    }

    // 0 for equal indices; the flags then tell an empty ring from a full one.
    static uint32_t freeElements(const Header& header) {
        return header.writeIndex <= header.readIndex
                   ? header.readIndex - header.writeIndex
                   : header.capacity - (header.writeIndex - header.readIndex);
    }

    // `index` lies in the ring and `count` is at most the capacity: one turn brings it back.
    static uint32_t indexBehind(uint32_t index, uint32_t count, uint32_t capacity) {
        const uint32_t untilEnd = capacity - index;
        return count < untilEnd ? index + count : count - untilEnd;
    }

    Accessor accessor_;
    bool consumer_;
};

}  // namespace com_qel::Orvane::Vantric::ClientServer
