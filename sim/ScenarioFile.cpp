#include "sim/ScenarioFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <nlohmann/json.hpp>

#include "sim/RecordReader.h"
#include "sim/TimelineReader.h"

namespace vantric_sim {

namespace {

constexpr int64_t longestMilliseconds = 3'600'000;

// More than any key needs; much deeper documents would exhaust the stack of whoever prints them.
constexpr int deepestNesting = 100;

template <class Group>
struct DurationKey {
    const char* key;
    milliseconds Group::*member;
};

constexpr DurationKey<Delays> delayKeys[] = {
    {"switchConnectivity", &Delays::switchConnectivity},
    {"joinNetwork", &Delays::joinNetwork},
    {"setEncryption", &Delays::setEncryption},
    {"configurationStart", &Delays::configurationStart},
    {"configurationLoad", &Delays::configurationLoad},
    {"scan", &Delays::scan},
    {"refresh", &Delays::refresh},
    {"connect", &Delays::connect},
};

constexpr DurationKey<Intervals> intervalKeys[] = {
    {"publish", &Intervals::publish},
    {"drain", &Intervals::drain},
};

template <class Group, std::size_t size>
void readDurations(const std::optional<JsonValue>& object, const DurationKey<Group> (&table)[size],
                   int64_t minimum, Group& group) {
    if (!object) {
        return;
    }
    std::vector<std::string> keys;
    keys.reserve(size);
    for (const DurationKey<Group>& row : table) {
        keys.emplace_back(row.key);
    }
    object->expectKeys(keys);
    for (const DurationKey<Group>& row : table) {
        if (const auto value = object->find(row.key)) {
            group.*row.member = milliseconds(value->integer(minimum, longestMilliseconds));
        }
    }
}

void readOptionalText(const std::optional<JsonValue>& value, std::size_t fieldSize,
                      std::optional<std::string>& text) {
    if (value) {
        text = value->text(fieldSize - 1);
    }
}

Scenario readScenario(const JsonValue& root) {
    root.expectKeys({"state", "extended", "networks", "delays", "intervals",
                     "configurationHostname", "connectionState", "timeline"});
    Scenario scenario;
    if (const auto state = root.find("state")) {
        applyChanges(&scenario.state, readFieldChanges(*state, stateFields()));
    }
    if (const auto extended = root.find("extended")) {
        applyChanges(&scenario.extended, readFieldChanges(*extended, extendedFields()));
    }
    if (const auto networks = root.find("networks")) {
        scenario.networks = readNetworks(*networks);
    }
    readDurations(root.find("delays"), delayKeys, 0, scenario.delays);
    readDurations(root.find("intervals"), intervalKeys, 1, scenario.intervals);
    readOptionalText(root.find("configurationHostname"), sizeof(ModemState::hostname),
                     scenario.configurationHostname);
    readOptionalText(root.find("connectionState"), sizeof(ModemState::wifiConnectionState),
                     scenario.connectionState);
    if (const auto timeline = root.find("timeline")) {
        scenario.timeline = readTimeline(*timeline);
    }
    return scenario;
}

[[noreturn]] void failReading(const std::string& path) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the program has one thread
    throw ScenarioError(path + ": " + std::strerror(errno));
}

std::string contentOf(const std::string& path) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                               std::fclose);
    if (!file) {
        failReading(path);
    }
    std::string content;
    char block[4096];
    std::size_t count = 0;
    while ((count = std::fread(block, 1, sizeof(block), file.get())) > 0) {
        content.append(block, count);
    }
    if (std::ferror(file.get()) != 0) {
        failReading(path);
    }
    return content;
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
