// Sequences of operations on the command ring, compared with the model after each: every byte of
// the object, and everything that a consumer is handed.
//
// Input: operations of the form kind, object, command (byte), size (16 bits), content (run).
#include "fuzz/Input.h"
#include "fuzz/Target.h"
#include "tests/support/RingExercise.h"

namespace {

using vantric_fuzz::Input;
using vantric_test::RingExercise;
using vantric_test::RingOperation;

constexpr std::size_t largestSize = 4200;  // a little more than the ring holds
constexpr int mostOperations = 200;

RingOperation readOperation(Input& input) {
    RingOperation operation;
    operation.kind = static_cast<RingOperation::Kind>(input.byte() % RingOperation::kindCount);
    operation.object = input.byte();
    operation.command = input.byte() * 0x01010101U;
    operation.size = input.half() % (largestSize + 1);
    operation.content = input.run();
    return operation;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Input input(data, size);
    RingExercise exercise;
    for (int count = 0; !input.isEmpty() && count < mostOperations; ++count) {
        const RingOperation operation = readOperation(input);
        const std::string difference = exercise.perform(operation);
        if (!difference.empty()) {
            vantric_fuzz::fail("after operation " + std::to_string(count) + " of kind " +
                               std::to_string(static_cast<int>(operation.kind)) + ": " +
                               difference);
        }
    }
    return 0;
}
