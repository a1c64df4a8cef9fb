// The commands of the program, one function each. They run to their end, print what they do on
// standard output and report no result.
//
// All but forgetWifi() and printExtendedStatus() run as runCommand() does: they retry the
// connection without limit, a std::exception ends the command only, and times are the wall clock's.
// Those two exercise the library's C interface instead: they try to connect only once, catch no
// exception and measure on the monotonic clock.
#pragma once

#include <string>

#include "Vantric/ModemState.h"

namespace vantricprobe {

// --status: prints the state every few seconds until the process is stopped. The list of networks
// is queried only for the time it takes.
void monitorStatus();

enum class AfterRequest { Return, WaitForChange };

// --enablewifi, --disablewifi, --switchtowifi, --switchtocarrier: asks for `target` and returns, or
// waits until the server confirms it.
void switchConnectivity(com_qel::Orvane::Vantric::ConnectivityType target, AfterRequest then);

// --setwifi: asks the server to join the network `name` and waits until the state shows that name.
void setWifiName(const std::string& name);

// --availablewifi: prints the networks in range.
void listAvailableWifi();

// --setConfig: asks the server to load the configuration `fileName`, which only the server opens,
// and waits until it publishes a state that can be read.
void setConfig(const std::string& fileName);

// --setConfigKeepWifi: the same; afterwards writes back the wifi settings from before.
void setConfigKeepWifi(const std::string& fileName);

// --forgetwifi: makes the server forget the current wifi network.
void forgetWifi();

// --statuscapi: prints the extended status. Makes no copy of its texts, so that memory that runs
// out does not end the program here.
void printExtendedStatus();

}  // namespace vantricprobe
