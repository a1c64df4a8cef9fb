// What the server does about each command: a change of its records, published after a delay.
#pragma once

#include <string_view>

#include "Vantric/CommandTable.h"

namespace vantric_sim {

class SimulatedServer;

using com_qel::Orvane::Vantric::CommandDescription;
using com_qel::Orvane::Vantric::commandTable;
using com_qel::Orvane::Vantric::findCommand;
using com_qel::Orvane::Vantric::ClientServer::ModemCommand;

// Schedules the effect of a frame. False for a malformed payload, which has no effect.
bool reactTo(ModemCommand command, SimulatedServer& server, std::string_view payload);

}  // namespace vantric_sim
