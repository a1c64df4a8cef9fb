#include "sim/ScenarioFile.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "sim/RecordFields.h"
#include "sim/Timeline.h"

namespace vantric_sim {

namespace {

constexpr int64_t longestMilliseconds = 3'600'000;

// More than any key needs; much deeper documents would exhaust the stack of a function that prints
// them.
constexpr int deepestNesting = 100;

// What takes the value of a key into `duration`, or `text`.
auto into(milliseconds& duration, int64_t minimum) {
    return [&duration, minimum](const JsonValue& value) {
        duration = milliseconds(value.integer(minimum, longestMilliseconds));
    };
}

auto into(std::optional<std::string>& text, std::size_t fieldSize) {
    return [&text, fieldSize](const JsonValue& value) { text = value.text(fieldSize - 1); };
}

Scenario readScenario(const JsonValue& root) {
    Scenario scenario;
    Delays& delays = scenario.delays;
    Intervals& intervals = scenario.intervals;
    const std::vector<JsonValue::Key> delayKeys = {
        {"switchConnectivity", into(delays.switchConnectivity, 0)},
        {"joinNetwork", into(delays.joinNetwork, 0)},
        {"setEncryption", into(delays.setEncryption, 0)},
        {"configurationStart", into(delays.configurationStart, 0)},
        {"configurationLoad", into(delays.configurationLoad, 0)},
        {"scan", into(delays.scan, 0)},
        {"refresh", into(delays.refresh, 0)},
        {"connect", into(delays.connect, 0)},
    };
    const std::vector<JsonValue::Key> intervalKeys = {
        {"publish", into(intervals.publish, 1)},
        {"drain", into(intervals.drain, 1)},
    };
    root.object({
        {"state",
         [&](const JsonValue& value) {
             applyChanges(&scenario.state, readChanges(value, stateFields()));
         }},
        {"extended",
         [&](const JsonValue& value) {
             applyChanges(&scenario.extended, readChanges(value, extendedFields()));
         }},
        {"networks", [&](const JsonValue& value) { scenario.networks = readNetworks(value); }},
        {"delays", [&](const JsonValue& value) { value.object(delayKeys); }},
        {"intervals", [&](const JsonValue& value) { value.object(intervalKeys); }},
        {"configurationHostname",
         into(scenario.configurationHostname, sizeof(ModemState::hostname))},
        {"connectionState",
         into(scenario.connectionState, sizeof(ModemState::wifiConnectionState))},
        {"timeline", [&](const JsonValue& value) { scenario.timeline = readTimeline(value); }},
    });
    return scenario;
}

std::string contentOf(const std::string& path) {
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    if (!file || errno != 0) {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): the program has one thread
        throw ScenarioError(path + ": " + std::strerror(errno));
    }
    return content.str();
}

}  // namespace

Scenario parseScenario(const std::string& text) {
    const auto refuseDeepNesting = [](int depth, auto, const auto&) {
        if (depth > deepestNesting) {
            throw ScenarioError("expected at most " + std::to_string(deepestNesting) +
                                " levels of nesting");
        }
        return true;
    };
    nlohmann::json document;
    try {
        constexpr bool allowExceptions = true;
        constexpr bool ignoreComments = true;
        document = nlohmann::json::parse(text, refuseDeepNesting, allowExceptions, ignoreComments);
    } catch (const nlohmann::json::exception& error) {
        // The library puts its own error number in square brackets in front.
        const std::string message = error.what();
        const std::size_t end = message.find("] ");
        throw ScenarioError("expected JSON: " +
                            (end == std::string::npos ? message : message.substr(end + 2)));
    }
    return readScenario(JsonValue(document, ""));
}

Scenario readScenarioFile(const std::string& path) {
    const std::string content = contentOf(path);
    try {
        return parseScenario(content);
    } catch (const ScenarioError& error) {
        throw ScenarioError(path + ": " + error.what());
    }
}

}  // namespace vantric_sim
