// Loading a modem configuration: --setConfig, --setConfigKeepWifi.
#pragma once

#include <string>

namespace vantricprobe {

// Asks the server to load the configuration `fileName`, which only the server opens, and waits
// until it publishes a state that can be read.
void setConfig(const std::string& fileName);

// The same, with the wifi settings from before written back afterwards.
void setConfigKeepWifi(const std::string& fileName);

}  // namespace vantricprobe
