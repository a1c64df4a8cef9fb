// What a simulated server starts with and what happens to it, with usable defaults.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Vantric/ModemState.h"

namespace vantric_sim {

class SimulatedServer;

using com_qel::Orvane::Vantric::ModemState;
using com_qel::Orvane::Vantric::ModemStateExtended;
using com_qel::Orvane::Vantric::WifiListEntry;

using std::chrono::milliseconds;

// From a command's arrival to its effect.
struct Delays {
    milliseconds switchConnectivity{2000};
    milliseconds joinNetwork{2000};
    milliseconds setEncryption{500};
    milliseconds configurationStart{0};    // until the state becomes unreadable
    milliseconds configurationLoad{5000};  // how long it stays so
    milliseconds scan{1500};
    milliseconds refresh{300};
    milliseconds connect{2000};
};

struct Intervals {
    milliseconds publish{1000};
    milliseconds drain{5};
};

struct TimelineEvent {
    milliseconds at;          // after the server is ready
    const char* name;         // as the scenario wrote it
    bool needsRunningServer;  // ends or interrupts the server
    std::function<void(SimulatedServer& server)> perform;
};

struct Scenario {
    Scenario();

    ModemState state;
    ModemStateExtended extended;
    std::vector<WifiListEntry> networks;
    Delays delays;
    Intervals intervals;
    std::optional<std::string> configurationHostname;  // or else after the configuration file
    std::optional<std::string> connectionState;        // or else after the network's name
    std::vector<TimelineEvent> timeline;               // in order of time
};

}  // namespace vantric_sim
