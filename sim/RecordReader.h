// Reading record fields and networks from a scenario. Failures are ScenarioErrors.
#pragma once

#include <vector>

#include "sim/JsonValue.h"
#include "sim/RecordFields.h"
#include "sim/Scenario.h"

namespace vantric_sim {

// The fields that the object names, each of which must be in the table.
std::vector<FieldChange> readFieldChanges(const JsonValue& object, const RecordFields& table);

std::vector<WifiListEntry> readNetworks(const JsonValue& array);

}  // namespace vantric_sim
