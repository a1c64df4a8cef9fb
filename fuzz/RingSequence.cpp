// Sequences of attaching, detaching, enqueueing and dequeueing: after each step, every byte of the
// ring's object is as the model has it.
//
// Input: operations, each of kind, object, command (bytes), size (half word), content (run).
#include "fuzz/Input.h"
#include "fuzz/Target.h"
#include "tests/support/RingExercise.h"

namespace {

using vantric_fuzz::Input;
using namespace vantric_test;

constexpr std::size_t largestSize = 4200;  // a little more than the ring holds
constexpr int mostOperations = 200;

// Braces evaluate their contents in order.
RingOperation readOperation(Input& input) {
    return {static_cast<RingOperation::Kind>(input.byte() % RingOperation::kindCount), input.byte(),
            input.byte() * 0x01010101U, input.half() % (largestSize + 1), input.run()};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Input input(data, size);
    RingExercise exercise;
    for (int count = 0; !input.isEmpty() && count < mostOperations; ++count) {
        const std::string difference = exercise.perform(readOperation(input));
        vantric_fuzz::require(difference.empty(), difference);
    }
    return 0;
}
