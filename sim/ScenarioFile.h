// Reading scenarios: JSON with // and /* */ comments, every key optional.
#pragma once

#include <string>

#include "sim/JsonValue.h"
#include "sim/Scenario.h"

namespace vantric_sim {

// The scenario of a text or of a file. Both throw ScenarioError, whose text names the key path and
// what was expected there, or the place that is no JSON; readScenarioFile() puts the file in front.
Scenario parseScenario(const std::string& text);
Scenario readScenarioFile(const std::string& path);

}  // namespace vantric_sim
