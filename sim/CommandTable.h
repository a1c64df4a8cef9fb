// The commands that clients send, with their names and payload formats as people read them.
#pragma once

#include <cstdint>
#include <vector>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"

namespace vantric_sim {

using com_qel::Orvane::Vantric::ClientServer::ModemCommand;

struct CommandDescription {
    ModemCommand command;
    const char* name;
    const char* payload;
};

// In the order of the numbers.
const std::vector<CommandDescription>& commandTable();

// Null for a number that no client sends.
const CommandDescription* findCommand(uint32_t command);

}  // namespace vantric_sim
