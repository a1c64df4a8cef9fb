#include "sim/Timeline.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "sim/RecordFields.h"
#include "sim/SimulatedServer.h"

namespace vantric_sim {

namespace {

constexpr std::size_t mostEvents = 10'000;
constexpr double longestSeconds = 1e6;
constexpr int64_t largestAge = std::numeric_limits<int32_t>::max();
constexpr int64_t largestWord = std::numeric_limits<uint32_t>::max();

// The values of an event's keys; each kind of event uses some of them.
struct Arguments {
    std::optional<Segment> segment;
    uint32_t version = 2;
    uint32_t command = 0;
    std::optional<uint32_t> frames;
    int64_t age = 0;  // seconds
    milliseconds duration{0};
    FieldChanges state;
    FieldChanges extended;
    std::vector<WifiListEntry> networks;
};

struct Argument {
    const char* key;
    void (*read)(const JsonValue& value, Arguments& arguments);
    const char* missing = nullptr;  // what was expected there; null when it may be left out
};

milliseconds readSeconds(const JsonValue& value) {
    return milliseconds(std::llround(value.number(0.0, longestSeconds) * 1000.0));
}

// Readers of single arguments. The names of segments stand in the order of Segment.
void readStateSegment(const JsonValue& value, Arguments& arguments) {
    arguments.segment = static_cast<Segment>(value.choice({"state", "extended", "networks"}));
}

void readAnySegment(const JsonValue& value, Arguments& arguments) {
    arguments.segment =
        static_cast<Segment>(value.choice({"state", "extended", "networks", "commands"}));
}

template <auto member, int64_t minimum = 0>
void readWord(const JsonValue& value, Arguments& arguments) {
    arguments.*member = static_cast<uint32_t>(value.integer(minimum, largestWord));
}

template <auto member, auto fields>
void readFields(const JsonValue& value, Arguments& arguments) {
    arguments.*member = readChanges(value, fields());
}

void readAge(const JsonValue& value, Arguments& arguments) {
    arguments.age = value.integer(-largestAge, largestAge);
}

void readDuration(const JsonValue& value, Arguments& arguments) {
    arguments.duration = readSeconds(value);
}

void readNetworkList(const JsonValue& value, Arguments& arguments) {
    arguments.networks = readNetworks(value);
}

struct EventKind {
    const char* name;
    std::vector<Argument> arguments;  // besides "at" and "do"
    void (*perform)(SimulatedServer& server, const Arguments& given);
    bool needsRunningServer = false;
};

template <auto fault, bool isPresent>
void setFault(SimulatedServer& server, const Arguments&) {
    server.faults.*fault = isPresent;
}

void setRecords(SimulatedServer& server, const Arguments& given) {
    applyChanges(&server.publisher.state, given.state);
    applyChanges(&server.publisher.extended, given.extended);
    server.publisher.publishState();
    server.publisher.publishExtended();
}

void ageTimestamps(SimulatedServer& server, const Arguments& given) {
    server.faults.timestampAge = given.age;
    server.publisher.publishState();
}

void freeze(SimulatedServer& server, const Arguments& given) {
    for (const Segment segment : {Segment::State, Segment::Extended, Segment::Networks}) {
        if (given.segment.value_or(segment) == segment) {
            server.faults.of(segment).frozen = true;
        }
    }
}

void invalidateHeader(SimulatedServer& server, const Arguments& given) {
    server.faults.of(*given.segment).invalid = true;
    server.publisher.publishAll();
}

void changeVersion(SimulatedServer& server, const Arguments& given) {
    server.faults.of(*given.segment).version = given.version;
    server.publisher.publishAll();
}

void restore(SimulatedServer& server, const Arguments&) {
    server.faults = Faults();
    server.publisher.publishAll();
}

const std::vector<EventKind>& eventKinds() {
    constexpr bool needsRunningServer = true;
    static const std::vector<EventKind> kinds = {
        {"set",
         {{"state", readFields<&Arguments::state, stateFields>},
          {"extended", readFields<&Arguments::extended, extendedFields>}},
         setRecords},
        {"replaceNetworks",
         {{"networks", readNetworkList, "an array of networks"}},
         [](auto& server, auto& given) { server.publisher.networksInRange = given.networks; }},
        {"ignoreCommand",
         {{"command", readWord<&Arguments::command>, "a command's number"},
          {"frames", readWord<&Arguments::frames, 1>}},
         [](auto& server, auto& given) {
             server.faults.ignoredFrames[given.command] = given.frames;
         }},
        {"stickSwitch", {}, setFault<&Faults::switchIsStuck, true>},
        {"ageTimestamps", {{"seconds", readAge, "an age in seconds"}}, ageTimestamps},
        {"freeze", {{"segment", readStateSegment}}, freeze},
        {"invalidateHeader",
         {{"segment", readStateSegment, "the segment's name"}},
         invalidateHeader},
        {"changeVersion",
         {{"segment", readStateSegment, "the segment's name"},
          {"version", readWord<&Arguments::version>}},
         changeVersion},
        {"restore", {}, restore},
        {"stopDraining", {}, setFault<&Faults::drainingIsStopped, true>},
        {"resumeDraining", {}, setFault<&Faults::drainingIsStopped, false>},
        {"dieHoldingLock",
         {{"segment", readAnySegment, "the segment's name"}},
         [](auto& server, auto& given) { server.publisher.dieHoldingLock(*given.segment); },
         needsRunningServer},
        {"vanish",
         {{"seconds", readDuration, "a number of seconds"}},
         [](auto& server, auto& given) { server.vanish(given.duration); },
         needsRunningServer},
        {"exit", {}, [](auto& server, auto&) { server.end(); }, needsRunningServer},
    };
    return kinds;
}

const EventKind& readKind(const JsonValue& event) {
    std::vector<std::string> names;
    for (const EventKind& kind : eventKinds()) {
        names.emplace_back(kind.name);
    }
    return eventKinds()[event.member("do", "the name of an event").choice(names)];
}

TimelineEvent readEvent(const JsonValue& value) {
    const EventKind& kind = readKind(value);
    milliseconds at{0};
    Arguments arguments;
    const JsonValue::Key time = {"at", [&](const JsonValue& member) { at = readSeconds(member); },
                                 "a number of seconds"};
    const JsonValue::Key name = {"do", [](const JsonValue&) {}};
    std::vector<JsonValue::Key> keys = {time, name};
    for (const Argument& argument : kind.arguments) {
        keys.push_back({argument.key,
                        [&](const JsonValue& member) { argument.read(member, arguments); },
                        argument.missing});
    }
    value.object(keys);
    return {at, kind.name, kind.needsRunningServer,
            [perform = kind.perform, arguments](SimulatedServer& server) {
                perform(server, arguments);
            }};
}

}  // namespace

std::vector<TimelineEvent> readTimeline(const JsonValue& array) {
    std::vector<TimelineEvent> events;
    for (const JsonValue& element : array.elements(mostEvents)) {
        events.push_back(readEvent(element));
    }
    std::stable_sort(
        events.begin(), events.end(),
        [](const TimelineEvent& left, const TimelineEvent& right) { return left.at < right.at; });
    return events;
}

}  // namespace vantric_sim
