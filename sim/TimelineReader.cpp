#include "sim/TimelineReader.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "sim/RecordReader.h"

namespace vantric_sim {

namespace {

constexpr std::size_t mostEvents = 10'000;
constexpr double longestSeconds = 1e6;
constexpr int64_t largestAge = std::numeric_limits<int32_t>::max();
constexpr int64_t largestWord = std::numeric_limits<uint32_t>::max();
constexpr uint32_t defaultWrongVersion = 2;

// The names stand in the order of Segment.
Segment readSegment(const JsonValue& value, const std::vector<std::string>& namesInOrder) {
    return static_cast<Segment>(value.choice(namesInOrder));
}

Segment readStateSegment(const JsonValue& value) {
    return readSegment(value, {"state", "extended", "networks"});
}

Segment readAnySegment(const JsonValue& value) {
    return readSegment(value, {"state", "extended", "networks", "commands"});
}

JsonValue segmentMember(const JsonValue& event) {
    return event.member("segment", "the segment's name");
}

milliseconds readSeconds(const JsonValue& value) {
    return milliseconds(std::llround(value.number(0.0, longestSeconds) * 1000.0));
}

Action readSet(const JsonValue& event) {
    SetFields set;
    if (const auto state = event.find("state")) {
        set.state = readFieldChanges(*state, stateFields());
    }
    if (const auto extended = event.find("extended")) {
        set.extended = readFieldChanges(*extended, extendedFields());
    }
    return set;
}

Action readReplaceNetworks(const JsonValue& event) {
    return ReplaceNetworks{readNetworks(event.member("networks", "an array of networks"))};
}

Action readIgnoreCommand(const JsonValue& event) {
    IgnoreCommand ignore = {};
    ignore.command = static_cast<uint32_t>(
        event.member("command", "a command's number").integer(0, largestWord));
    if (const auto frames = event.find("frames")) {
        ignore.frames = static_cast<uint32_t>(frames->integer(1, largestWord));
    }
    return ignore;
}

Action readAgeTimestamps(const JsonValue& event) {
    return AgeTimestamps{
        event.member("seconds", "an age in seconds").integer(-largestAge, largestAge)};
}

Action readFreeze(const JsonValue& event) {
    Freeze freeze;
    if (const auto segment = event.find("segment")) {
        freeze.segment = readStateSegment(*segment);
    }
    return freeze;
}

Action readInvalidateHeader(const JsonValue& event) {
    return InvalidateHeader{readStateSegment(segmentMember(event))};
}

Action readChangeVersion(const JsonValue& event) {
    const auto version = event.find("version");
    return ChangeVersion{
        readStateSegment(segmentMember(event)),
        version ? static_cast<uint32_t>(version->integer(0, largestWord)) : defaultWrongVersion};
}

Action readDieHoldingLock(const JsonValue& event) {
    return DieHoldingLock{readAnySegment(segmentMember(event))};
}

Action readVanish(const JsonValue& event) {
    return Vanish{readSeconds(event.member("seconds", "a number of seconds"))};
}

template <class Plain>
Action plain(const JsonValue&) {
    return Plain{};
}

struct EventKind {
    std::string name;
    std::vector<std::string> keys;  // besides "at" and "do"
    Action (*read)(const JsonValue& event);
};

const std::vector<EventKind>& eventKinds() {
    static const std::vector<EventKind> kinds = {
        {"set", {"state", "extended"}, readSet},
        {"replaceNetworks", {"networks"}, readReplaceNetworks},
        {"ignoreCommand", {"command", "frames"}, readIgnoreCommand},
        {"stickSwitch", {}, plain<StickSwitch>},
        {"ageTimestamps", {"seconds"}, readAgeTimestamps},
        {"freeze", {"segment"}, readFreeze},
        {"invalidateHeader", {"segment"}, readInvalidateHeader},
        {"changeVersion", {"segment", "version"}, readChangeVersion},
        {"restore", {}, plain<Restore>},
        {"stopDraining", {}, plain<StopDraining>},
        {"resumeDraining", {}, plain<ResumeDraining>},
        {"dieHoldingLock", {"segment"}, readDieHoldingLock},
        {"vanish", {"seconds"}, readVanish},
        {"exit", {}, plain<Exit>},
    };
    return kinds;
}

const EventKind& readKind(const JsonValue& event) {
    const JsonValue name = event.member("do", "the name of an event");
    std::vector<std::string> names;
    for (const EventKind& kind : eventKinds()) {
        names.push_back(kind.name);
    }
    return eventKinds()[name.choice(names)];
}

TimelineEvent readEvent(const JsonValue& value) {
    const EventKind& kind = readKind(value);
    std::vector<std::string> keys = {"at", "do"};
    keys.insert(keys.end(), kind.keys.begin(), kind.keys.end());
    value.expectKeys(keys);
    const milliseconds at = readSeconds(value.member("at", "a number of seconds"));
    return {at, kind.name, kind.read(value)};
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
