// An operation that the driver repeats, either for a tool that counts what it costs or against the
// clock, beside the same work by hand and beside other ways to do it.
#pragma once

#include <functional>
#include <string_view>
#include <vector>

namespace vantric_bench {

constexpr int batchSize = 32;  // the frames of the largest command fit into the ring together

constexpr const char* floorRole = "floor";      // the same work by hand
constexpr const char* productRole = "product";  // ours
constexpr const char* peerRole = "peer";        // another way; timed only
constexpr const char* plantedRole = "planted";  // too expensive on purpose; counted only

struct Repetition {
    std::function<int()> run;      // repeats the operation batchSize times; the number of successes
    std::function<int()> takeAll;  // receives what was sent; the number of operations that arrived
};

struct Operation {
    const char* row;        // what is done; the results compare the operations of one row
    std::string_view role;  // one of the four above; a row has one floor
    const char* name;
    std::function<Repetition()> prepare;  // throws std::runtime_error when something is missing
};

using Operations = std::vector<Operation>;

// Instruction counters are switched on for this function alone, by its name.
template <class Callable>
[[gnu::noinline]] int measuredSection(Callable& operation) {
    int succeeded = 0;
    for (int index = 0; index < batchSize; ++index) {
        succeeded += operation() ? 1 : 0;
    }
    return succeeded;
}

template <class Send, class TakeAll>
Repetition repeatSending(Send send, TakeAll takeAll) {
    return {[send]() mutable { return measuredSection(send); }, takeAll};
}

// For an operation whose own result says whether it succeeded.
template <class Callable>
Repetition repeat(Callable operation) {
    return repeatSending(operation, [] { return batchSize; });
}

// One table for each subject, and one for each peer.
Operations stateOperations();
Operations commandOperations();
Operations logOperations();
Operations programOperations();
Operations boostPeers();
Operations socketPeers();
Operations busPeers();
Operations spdlogPeers();

constexpr const char* stateRow = "state query (141 bytes)";
constexpr const char* enqueueRow = "enqueue (16 bytes)";
constexpr const char* logRow = "log line";

}  // namespace vantric_bench
