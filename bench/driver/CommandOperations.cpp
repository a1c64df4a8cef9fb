// Commands into the ring, and the floor under them. Every frame is taken out again and compared.
#include <string>

#include "bench/driver/Operations.h"
#include "bench/driver/Repetition.h"
#include "bench/floors/EnqueueFloor.h"
#include "bench/support/Exchange.h"

namespace vantric_bench {

namespace {

using com_qel::Orvane::Vantric::ClientServer::ModemCommand;
using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands;

constexpr auto sendText = static_cast<uint32_t>(ModemCommand::SendText);

// Repeats what sends one frame of `command` and `payload`.
template <class Operation>
void repeatSending(long count, Exchange& exchange, uint32_t command, const std::string& payload,
                   Operation operation) {
    exchange.commands.expect(command, payload);
    repeat(count, operation, [&] {
        if (exchange.commands.takeAll() != batchSize) {
            throw std::runtime_error("a frame did not arrive");
        }
    });
}

template <int size>
void enqueue(long count) {
    Exchange exchange;
    SharedMemoryModemCommands channel(false);
    const std::string payload = std::string().append(size, 'x');
    repeatSending(count, exchange, sendText, payload,
                  [&] { return channel.enqueue(sendText, payload.data(), size); });
}

template <int size>
void enqueueFloor(long count) {
    Exchange exchange;
    EnqueueFloor floor;
    const std::string payload = std::string().append(size, 'x');
    repeatSending(count, exchange, sendText, payload,
                  [&] { return floor.enqueue(sendText, payload.data(), size); });
}

void textCommand(long count) {
    Exchange exchange;
    const std::string text(100, 'x');
    repeatSending(count, exchange, sendText, text,
                  [&] { return exchange.client.sendTextCommand(text); });
}

void setWifiSsid(long count) {
    Exchange exchange;
    const std::string ssid = "home network";
    repeatSending(count, exchange, static_cast<uint32_t>(ModemCommand::SetWifiSsid), ssid,
                  [&] { return exchange.client.setWifiSSID(ssid); });
}

}  // namespace

NamedOperations commandOperations() {
    return {
        {"floorEnqueue0", enqueueFloor<0>},     {"enqueue0", enqueue<0>},
        {"floorEnqueue16", enqueueFloor<16>},   {"enqueue16", enqueue<16>},
        {"floorEnqueue100", enqueueFloor<100>}, {"enqueue100", enqueue<100>},
        {"sendTextCommand100", textCommand},    {"setWifiSSID", setWifiSsid},
    };
}

}  // namespace vantric_bench
