// Uses the transport as a server does: publishes a state, takes the clients' commands, and executes
// the command that names a network. Ends after that (attached clients keep the state alive), or
// after a minute.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <string>
#include <thread>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "Vantric/ClientServer/SharedMemoryModemState.h"

using com_qel::Orvane::Vantric::ConnectivityType;
using com_qel::Orvane::Vantric::ModemState;
using com_qel::Orvane::Vantric::ClientServer::ModemCommand;
using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands;
using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemState;

namespace {

using Clock = std::chrono::steady_clock;

template <std::size_t size>
void setField(char (&field)[size], const std::string& text) {
    std::fill(std::begin(field), std::end(field), '\0');
    std::copy_n(text.begin(), std::min(text.size(), size - 1), field);
}

// A state is stale after 300 seconds, so a server publishes it at short intervals.
void publish(SharedMemoryModemState& segment, ModemState& state) {
    state.timestamp = static_cast<int32_t>(std::time(nullptr));
    segment.publish(state);
}

// Takes one command out of the ring. Returns true when it names a network, and sets `name`.
bool takeNetworkName(SharedMemoryModemCommands& commands, std::string& name) {
    std::array<char, 4096> payload = {};  // larger than any payload, so a NUL follows it
    uint32_t command = 0;
    auto capacity = static_cast<uint32_t>(payload.size());
    if (!commands.dequeue(command, payload.data(), &capacity) ||
        command != static_cast<uint32_t>(ModemCommand::SetWifiSsid)) {
        return false;
    }
    // Without a payload the channel leaves buffer and size as they are: the name is empty.
    name = payload.data();
    return true;
}

int serve() {
    SharedMemoryModemState segment;
    SharedMemoryModemCommands commands(true);  // the ring's one consumer
    ModemState state = {};
    state.connectivityType = static_cast<int32_t>(ConnectivityType::Wifi);
    setField(state.wifiSsid, "home");
    setField(state.hostname, "example");
    setField(state.wifiConnectionState, "online");
    publish(segment, state);
    std::puts("published: home");
    std::fflush(stdout);

    const auto deadline = Clock::now() + std::chrono::minutes(1);
    std::string name;
    while (!takeNetworkName(commands, name)) {
        if (Clock::now() > deadline) {
            std::fputs("no client asked for a network\n", stderr);
            return EXIT_FAILURE;
        }
        publish(segment, state);
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    setField(state.wifiSsid, name);
    publish(segment, state);
    std::printf("published: %s\n", name.c_str());
    return EXIT_SUCCESS;
}

}  // namespace

int main() {
    try {
        return serve();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return EXIT_FAILURE;
    }
}
