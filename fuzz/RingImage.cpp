// Command rings whose object holds arbitrary bytes: an operation changes nothing but the ring's
// indices, flags and data, and nothing at all when the header cannot be true; a dequeue writes only
// what it hands out, and the lock is free afterwards.
//
// Input: corrections (bits: 1 set up, 2 right capacity, 4 read index and 8 write index inside it),
// initialized, read index, write index, capacity (words), full, empty (bytes), content (run; lies
// at the read index), then operations.
#include <algorithm>
#include <iterator>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "fuzz/Input.h"
#include "fuzz/Target.h"
#include "tests/support/DequeueOutputs.h"
#include "tests/support/RawSegment.h"
#include "tests/support/RawSemaphore.h"

namespace {

using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands;
using namespace vantric_fuzz;
using namespace vantric_test;

constexpr int mostOperations = 64;
constexpr std::size_t largestSize = 4200;
constexpr uint32_t smallestOversize = 4089;

// Where the fields are in the object; words but for the flags.
constexpr std::size_t initializedOffset = 4;
constexpr std::size_t readIndexOffset = 16;
constexpr std::size_t writeIndexOffset = 20;
constexpr std::size_t capacityOffset = 24;
constexpr std::size_t fullOffset = 28;
constexpr std::size_t emptyOffset = 29;
constexpr std::size_t dataOffset = 30;

// Attached once, in both roles; each input brings another content.
struct Ring {
    SharedMemoryModemCommands producer{false};
    SharedMemoryModemCommands consumer{true};
    RawSegment object{"ModemCommandsShm"};
    RawSemaphore lock{"ModemCommandsShmLock"};
    const Bytes attached = object.bytes();

    bool isUsable() const {
        const uint32_t capacity = object.word(capacityOffset);
        return object.word(initializedOffset) == 1 && capacity <= RingModel::capacity &&
               object.word(readIndexOffset) < capacity && object.word(writeIndexOffset) < capacity;
    }
};

Ring& ring() {
    static Ring& instance = *new Ring;
    return instance;
}

uint32_t corrected(bool isInside, uint32_t index, uint32_t capacity) {
    return isInside && capacity != 0 ? index % capacity : index;
}

void publishImage(Input& input) {
    RawSegment& object = ring().object;
    object.write(0, ring().attached);
    const uint8_t corrections = input.byte();
    const uint32_t initialized = input.word();
    const uint32_t readIndex = input.word();
    const uint32_t writeIndex = input.word();
    const uint32_t anyCapacity = input.word();
    const uint32_t capacity = (corrections & 2U) != 0 ? RingModel::capacity : anyCapacity;
    object.writeWord(initializedOffset, (corrections & 1U) != 0 ? 1 : initialized);
    object.writeWord(readIndexOffset, corrected((corrections & 4U) != 0, readIndex, capacity));
    object.writeWord(writeIndexOffset, corrected((corrections & 8U) != 0, writeIndex, capacity));
    object.writeWord(capacityOffset, capacity);
    object.write(fullOffset, {input.byte()});
    object.write(emptyOffset, {input.byte()});
    std::size_t offset = readIndex;
    for (const unsigned char byte : input.run()) {
        object.write(dataOffset + offset++ % RingModel::capacity, {byte});
    }
}

void enqueue(Input& input) {
    const uint32_t command = input.byte();
    const std::size_t size = input.half() % (largestSize + 1);
    const Bytes payload = repeated(input.run(), size);
    require(ring().producer.enqueue(command, payload.data(), static_cast<uint32_t>(size)),
            "enqueue() returns true");
}

// Names a size that the ring cannot hold. The payload is much shorter, so it must not be read.
void enqueueOversized(Input& input) {
    const Bytes payload = {input.byte()};
    const uint32_t size = std::max(input.word(), smallestOversize);
    require(ring().producer.enqueue(1, payload.data(), size), "enqueue() returns true");
}

void enqueueNothing(Input& input) {
    require(ring().producer.enqueue(2, nullptr, input.word()), "enqueue() returns true");
}

template <bool hasBuffer, bool hasSize>
void dequeue(Input& input) {
    const std::size_t capacity = input.half() % (largestSize + 1);
    const bool wasUsable = ring().isUsable();
    DequeueOutputs outputs(capacity);
    const bool isDequeued =
        ring().consumer.dequeue(outputs.command, hasBuffer ? outputs.buffer.get() : nullptr,
                                hasSize ? &outputs.size : nullptr);
    require(wasUsable || !isDequeued, "an unusable ring yields no frame");
    require(isDequeued || outputs.hold(std::nullopt), "a failed dequeue() writes nothing");
    require(outputs.size <= capacity, "a payload fits the buffer");
}

// Another process breaks one byte of the header or of the first data.
void breakByte(Input& input) {
    const std::size_t offset = initializedOffset + input.byte() % 40;
    ring().object.write(offset, {input.byte()});
}

using Operation = void (*)(Input& input);
constexpr Operation operations[] = {enqueue,
                                    enqueueOversized,
                                    enqueueNothing,
                                    dequeue<true, true>,
                                    dequeue<false, true>,
                                    dequeue<true, false>,
                                    breakByte};

// The bytes that no operation may change: the counts, the marks, the capacity and what follows the
// data; of an unusable ring, all.
Bytes constantBytes(const Bytes& object, bool isUsable, std::size_t capacity) {
    Bytes constant = object;
    if (isUsable) {
        const auto clear = [&constant](std::size_t offset, std::size_t count) {
            std::fill_n(constant.begin() + static_cast<std::ptrdiff_t>(offset), count, 0);
        };
        clear(readIndexOffset, capacityOffset - readIndexOffset);
        clear(fullOffset, dataOffset - fullOffset + capacity);
    }
    return constant;
}

void perform(Operation operation, Input& input) {
    const Bytes before = ring().object.bytes();
    const bool wasUsable = ring().isUsable();
    const uint32_t capacity = ring().object.word(capacityOffset);
    operation(input);
    require(ring().lock.value() == 1, "the lock is free after an operation");
    if (operation == breakByte) {
        return;
    }
    require(ring().isUsable() == wasUsable, "a ring stays as usable as it was");
    require(constantBytes(ring().object.bytes(), wasUsable, capacity) ==
                constantBytes(before, wasUsable, capacity),
            "an operation changes only what belongs to the ring's content");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Input input(data, size);
    publishImage(input);
    for (int count = 0; !input.isEmpty() && count < mostOperations; ++count) {
        perform(operations[input.byte() % std::size(operations)], input);
    }
    return 0;
}
