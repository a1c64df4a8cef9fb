// The commands that clients send: their names and payload formats as people read them, and what the
// server does about each: a change of its records, published after a delay.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"

namespace vantric_sim {

class SimulatedServer;

using com_qel::Orvane::Vantric::ClientServer::ModemCommand;

// Schedules the effect of a frame. False for a malformed payload, which has no effect.
using Reaction = bool (*)(SimulatedServer& server, std::string_view payload);

struct CommandDescription {
    ModemCommand command;
    const char* name;
    const char* payload;
    Reaction react;  // null when the server does nothing
};

// In the order of the numbers.
const std::vector<CommandDescription>& commandTable();

// Null for a number that no client sends.
const CommandDescription* findCommand(uint32_t command);

}  // namespace vantric_sim
