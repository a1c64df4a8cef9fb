// Switching the active connectivity: --enablewifi, --disablewifi, --switchtowifi,
// --switchtocarrier.
#pragma once

#include "Vantric/ModemState.h"

namespace vantricprobe {

// Asks for `target` and, on demand, waits until the server confirms it.
void switchConnectivity(com_qel::Orvane::Vantric::ConnectivityType target, bool wait);

}  // namespace vantricprobe
