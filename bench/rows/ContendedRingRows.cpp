// Queueing 16 bytes while other processes queue too and one takes out.
#include <memory>

#include "bench/floors/EnqueueFloor.h"
#include "bench/support/ContendedRing.h"
#include "bench/support/Exchange.h"
#include "bench/support/Measurement.h"

namespace vantric_bench {

namespace {

template <class Send>
void addContended(int processes, const char* role, const char* what, Send send) {
    const std::string row = "enqueue by " + std::to_string(processes) + " processes";
    addContendedMeasurement(
        row, role, what, [=] { return std::make_unique<ContendedRing>(processes, send); },
        [send](benchmark::State& state, ContendedRing& ring) {
            constexpr int size = ContendedRing::batchSize;
            const uint32_t before = ring.waitUntilReceived(0);
            auto sendNext = [&] { return send(ring.next(0)); };
            timeTogether(state, size, sendNext);
            return Batch{size, static_cast<int>(ring.waitUntilReceived(0) - before)};
        });
}

}  // namespace

void registerRows() {
    static const Exchange exchange;
    auto floor = std::make_shared<EnqueueFloor>();
    auto channel =
        std::make_shared<com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands>(false);
    for (const int processes : {2, 4, 8}) {
        addContended(processes, floorRole, "by hand", [=](const ContendedRing::Payload& payload) {
            return floor->enqueue(ContendedRing::command, &payload, sizeof(payload));
        });
        addContended(processes, productRole, "enqueue", [=](const ContendedRing::Payload& payload) {
            return channel->enqueue(ContendedRing::command, &payload, sizeof(payload));
        });
    }
}

}  // namespace vantric_bench
