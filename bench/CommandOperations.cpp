// Commands into the ring, and the floor under them. Every frame is taken out again and compared.
#include <memory>
#include <string>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "bench/Exchange.h"
#include "bench/Operation.h"
#include "bench/floors/EnqueueFloor.h"

namespace vantric_bench {

namespace {

using namespace com_qel::Orvane::Vantric::ClientServer;

constexpr auto sendText = static_cast<uint32_t>(ModemCommand::SendText);
constexpr const char* textRow = "text command (100 bytes)";

template <class Send>
Repetition repeatCommand(const std::string& payload, Send send) {
    return repeatSending([=] { return send(payload); },
                         [payload] { return exchange().takeAll(sendText, payload); });
}

template <class Channel>
Repetition repeatEnqueue(std::shared_ptr<Channel> channel, uint32_t size) {
    return repeatCommand(std::string().append(size, 'x'), [=](const std::string& payload) {
        return channel->enqueue(sendText, payload.data(), size);
    });
}

template <uint32_t size>
Repetition enqueueFloor() {
    exchange();
    return repeatEnqueue(std::make_shared<EnqueueFloor>(), size);
}

Repetition enqueue() {
    exchange();
    return repeatEnqueue(std::make_shared<SharedMemoryModemCommands>(false), 16);
}

Repetition textCommand() {
    return repeatCommand(std::string(100, 'x'), [](const std::string& text) {
        return exchange().client.sendTextCommand(text);
    });
}

}  // namespace

Operations commandOperations() {
    return {
        {enqueueRow, floorRole, "floorEnqueue16", enqueueFloor<16>},
        {enqueueRow, productRole, "enqueue16", enqueue},
        {textRow, floorRole, "floorEnqueue100", enqueueFloor<100>},
        {textRow, productRole, "sendTextCommand100", textCommand},
    };
}

}  // namespace vantric_bench
