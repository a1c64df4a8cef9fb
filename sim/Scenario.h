// What a simulated server starts with and what happens to it. Pure data with usable defaults.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "Vantric/ModemState.h"
#include "sim/RecordFields.h"

namespace vantric_sim {

using com_qel::Orvane::Vantric::ModemState;
using com_qel::Orvane::Vantric::ModemStateExtended;
using com_qel::Orvane::Vantric::WifiListEntry;

using std::chrono::milliseconds;

// The shared-memory objects, by the names that scenarios use.
enum class Segment { State, Extended, Networks, Commands };

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

// Changes fields and publishes the changed records.
struct SetFields {
    std::vector<FieldChange> state;
    std::vector<FieldChange> extended;
};

// Changes what the next scan finds.
struct ReplaceNetworks {
    std::vector<WifiListEntry> networks;
};

// Frames of this command are printed and otherwise dropped: all, or the next `frames`.
struct IgnoreCommand {
    uint32_t command;
    std::optional<uint32_t> frames;
};

// Connectivity switches are accepted and never take effect.
struct StickSwitch {};

// The basic state's time stamp lies this far in the past; negative for the future.
struct AgeTimestamps {
    int64_t seconds;
};

// Nothing is written to the segment any more; to none of them when there is no segment.
struct Freeze {
    std::optional<Segment> segment;
};

struct InvalidateHeader {
    Segment segment;
};

struct ChangeVersion {
    Segment segment;
    uint32_t version;
};

// Ends every fault, a stopped draining included.
struct Restore {};

struct StopDraining {};

struct ResumeDraining {};

// The process kills itself while it holds the segment's contents lock.
struct DieHoldingLock {
    Segment segment;
};

// Detaches from everything, dropping commands in progress, and attaches again later.
struct Vanish {
    milliseconds duration;
};

// Detaches and ends the program.
struct Exit {};

using Action = std::variant<SetFields, ReplaceNetworks, IgnoreCommand, StickSwitch, AgeTimestamps,
                            Freeze, InvalidateHeader, ChangeVersion, Restore, StopDraining,
                            ResumeDraining, DieHoldingLock, Vanish, Exit>;

struct TimelineEvent {
    milliseconds at;   // after the server is ready
    std::string name;  // as the scenario wrote it
    Action action;
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
