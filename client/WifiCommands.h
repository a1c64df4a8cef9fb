// The wifi network: --setwifi, --availablewifi.
#pragma once

#include <string>

namespace vantricprobe {

// Asks the server to join the network `name` and waits until the state shows that name.
void setWifiName(const std::string& name);

// Prints the networks in range.
void listAvailableWifi();

}  // namespace vantricprobe
