// Queueing a command, by the size of its payload. What was queued is taken out and compared.
#include <algorithm>
#include <memory>
#include <string>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "bench/floors/EnqueueFloor.h"
#include "bench/peers/BoostQueue.h"
#include "bench/peers/BusQueue.h"
#include "bench/peers/DatagramQueue.h"
#include "bench/peers/PipeQueue.h"
#include "bench/peers/PosixQueue.h"
#include "bench/support/Exchange.h"
#include "bench/support/Measurement.h"

namespace vantric_bench {

namespace {

using com_qel::Orvane::Vantric::ClientServer::ModemCommand;
using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands;

constexpr auto command = static_cast<uint32_t>(ModemCommand::SendText);
constexpr uint32_t ringCapacity = 4096;
constexpr uint32_t peerPayloadSize = sizeof(PeerMessage::payload);

std::string rowOf(uint32_t size) {
    return "enqueue (" + std::to_string(size) + " bytes)";
}

// `send(payload)` queues one frame with a payload of this size.
template <class Send>
void addSender(uint32_t size, const char* role, const char* what, Exchange& exchange, Send send) {
    const std::string payload = std::string().append(size, 'x');
    const int batchSize = std::min(32, static_cast<int>(ringCapacity / (size + 8)));
    addSending(
        rowOf(size), role, what, batchSize, [=] { return send(payload); },
        [payload, &exchange] {
            exchange.commands.expect(command, payload);
            return exchange.commands.takeAll();
        });
}

template <class Peer>
void addPeer(const char* what) {
    auto peer = std::make_shared<Peer>();
    addSending(
        rowOf(peerPayloadSize), peerRole, what, Peer::batchSize, [=] { return peer->send(); },
        [=] { return peer->takeAll(); });
}

void addPeers() {
    addPeer<BusQueue>("D-Bus method call");
    addPeer<BoostQueue>("Boost.Interprocess message queue");
    addPeer<PipeQueue>("pipe");
    addPeer<PosixQueue>("POSIX message queue");
    addPeer<DatagramQueue>("Unix datagram");
}

}  // namespace

void registerRows() {
    static Exchange exchange;
    auto floor = std::make_shared<EnqueueFloor>();
    auto channel = std::make_shared<SharedMemoryModemCommands>(false);
    for (const uint32_t size : {0U, peerPayloadSize, 100U, 1000U, ringCapacity - 8}) {
        addSender(size, floorRole, "by hand", exchange, [=](const std::string& payload) {
            return floor->enqueue(command, payload.data(), size);
        });
        addSender(size, productRole, "enqueue", exchange, [=](const std::string& payload) {
            return channel->enqueue(command, payload.data(), size);
        });
    }
    addPeers();
    addSender(100, productRole, "sendTextCommand", exchange,
              [](const std::string& payload) { return exchange.client.sendTextCommand(payload); });
}

}  // namespace vantric_bench
