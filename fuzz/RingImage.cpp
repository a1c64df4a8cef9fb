// Command rings whose object holds arbitrary bytes: dequeues with buffers of any size and enqueues
// have the results that follow from the header, and touch nothing but the ring and the buffer.
//
// Input: corrections (bits: 1 set up, 2 right capacity, 4 read index and 8 write index inside it),
// initialized, read index, write index, capacity (words), full, empty (bytes), content (run; lies
// at the read index), then operations.
#include <algorithm>
#include <optional>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "fuzz/Input.h"
#include "fuzz/RingArithmetic.h"
#include "fuzz/Target.h"
#include "fuzz/WholeObject.h"
#include "tests/support/DequeueOutputs.h"
#include "tests/support/RawSemaphore.h"

namespace {

using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands;
using vantric_fuzz::Bytes;
using vantric_fuzz::Input;
using vantric_fuzz::require;
using vantric_fuzz::RingArithmetic;
using vantric_fuzz::RingModel;
using vantric_fuzz::WholeObject;
using vantric_test::DequeueOutputs;

constexpr int mostOperations = 64;
constexpr std::size_t largestSize = 4200;
constexpr uint32_t smallestOversize = 4089;

// Attached once, in both roles; each input brings another object.
struct Ring {
    SharedMemoryModemCommands producer{false};
    SharedMemoryModemCommands consumer{true};
    WholeObject object{"ModemCommandsShm", RingArithmetic::objectSize};
    vantric_test::RawSemaphore lock{"ModemCommandsShmLock"};
};

Ring& ring() {
    static Ring& instance = *new Ring;
    return instance;
}

uint32_t inside(uint32_t index, uint32_t capacity) {
    return capacity == 0 ? index : index % capacity;
}

RingArithmetic readImage(Input& input) {
    const uint8_t corrections = input.byte();
    const uint32_t initialized = input.word();
    const uint32_t readIndex = input.word();
    const uint32_t writeIndex = input.word();
    const uint32_t anyCapacity = input.word();
    const uint32_t capacity = (corrections & 2U) != 0 ? RingModel::capacity : anyCapacity;
    RingArithmetic image(Bytes(RingArithmetic::objectSize, 0));
    image.setWord(RingArithmetic::initialized, (corrections & 1U) != 0 ? 1 : initialized);
    image.setWord(RingArithmetic::readIndex,
                  (corrections & 4U) != 0 ? inside(readIndex, capacity) : readIndex);
    image.setWord(RingArithmetic::writeIndex,
                  (corrections & 8U) != 0 ? inside(writeIndex, capacity) : writeIndex);
    image.setWord(RingArithmetic::capacity, capacity);
    image.setByte(RingArithmetic::full, input.byte());
    image.setByte(RingArithmetic::empty, input.byte());
    std::size_t offset = readIndex;
    for (const unsigned char byte : input.run()) {
        image.setByte(RingArithmetic::firstData + offset++ % RingModel::capacity, byte);
    }
    return image;
}

void enqueue(Input& input, RingArithmetic& expected) {
    const uint32_t command = input.byte();
    const std::size_t size = input.half() % (largestSize + 1);
    const Bytes payload = vantric_test::repeated(input.run(), size);
    expected.enqueue(command, payload);
    require(ring().producer.enqueue(command, payload.data(), static_cast<uint32_t>(size)),
            "enqueue() returns true");
}

// A size that the ring cannot hold, of a payload that is much shorter: it must not be read.
void enqueueOversized(Input& input, RingArithmetic&) {
    const Bytes payload = {input.byte()};
    const uint32_t size = std::max(input.word(), smallestOversize);
    require(ring().producer.enqueue(1, payload.data(), size), "enqueue() returns true");
}

void enqueueNothing(Input& input, RingArithmetic& expected) {
    const uint32_t size = input.word();
    if (size == 0) {
        expected.enqueue(2, {});
    }
    require(ring().producer.enqueue(2, nullptr, size), "enqueue() returns true");
}

void dequeueInto(Input& input, RingArithmetic& expected, bool hasBuffer, bool hasSize) {
    const std::size_t capacity = input.half() % (largestSize + 1);
    DequeueOutputs outputs(capacity);
    const bool isDequeued =
        ring().consumer.dequeue(outputs.command, hasBuffer ? outputs.buffer.get() : nullptr,
                                hasSize ? &outputs.size : nullptr);
    const auto frame =
        expected.dequeue(hasBuffer && hasSize ? std::optional(capacity) : std::nullopt);
    require(isDequeued == frame.has_value(), "dequeue() tells whether there is a frame");
    require(outputs.hold(frame), "dequeue() hands out the frame and nothing else");
}

void dequeue(Input& input, RingArithmetic& expected) {
    dequeueInto(input, expected, true, true);
}

void dequeueWithoutBuffer(Input& input, RingArithmetic& expected) {
    dequeueInto(input, expected, false, true);
}

void dequeueWithoutSize(Input& input, RingArithmetic& expected) {
    dequeueInto(input, expected, true, false);
}

// Somebody else breaks one byte of the header or of the first data.
void breakByte(Input& input, RingArithmetic& expected) {
    const std::size_t offset = RingArithmetic::initialized + input.byte() % 40;
    expected.setByte(offset, input.byte());
    ring().object.write(0, expected.object());
}

using Operation = void (*)(Input& input, RingArithmetic& expected);
constexpr Operation operations[] = {enqueue,  enqueueOversized,     enqueueNothing,
                                    dequeue,  dequeueWithoutBuffer, dequeueWithoutSize,
                                    breakByte};
constexpr std::size_t operationCount = sizeof(operations) / sizeof(operations[0]);

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Input input(data, size);
    RingArithmetic expected = readImage(input);
    ring().object.write(0, expected.object());
    for (int count = 0; !input.isEmpty() && count < mostOperations; ++count) {
        operations[input.byte() % operationCount](input, expected);
        require(ring().object.holds(0, expected.object()), "the object changes as its header says");
        require(ring().lock.value() == 1, "the lock is free after an operation");
    }
    require(ring().object.isTailUntouched(), "nothing is written behind the object");
    return 0;
}
