// The events of a scenario's timeline.
#pragma once

#include <vector>

#include "sim/JsonValue.h"
#include "sim/Scenario.h"

namespace vantric_sim {

// The events in order of time; those of one time in the order of the file. Failures are
// ScenarioErrors.
std::vector<TimelineEvent> readTimeline(const JsonValue& array);

}  // namespace vantric_sim
