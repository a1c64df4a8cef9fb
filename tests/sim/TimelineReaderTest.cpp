#include <gtest/gtest.h>

#include "sim/ScenarioFile.h"

namespace {

using namespace std::chrono_literals;
using namespace vantric_sim;

std::vector<TimelineEvent> timelineOf(const std::string& events) {
    return parseScenario("{\"timeline\": [" + events + "]}").timeline;
}

// The one event of a timeline, which must be of kind T.
template <class T>
T actionOf(const std::string& event) {
    return std::get<T>(timelineOf(event).at(0).action);
}

std::string errorOf(const std::string& events) {
    try {
        timelineOf(events);
        return "";
    } catch (const ScenarioError& error) {
        return error.what();
    }
}

TEST(TimelineReader, putsEventsInOrderOfTimeAndKeepsTheFilesOrderForEqualTimes) {
    const auto events = timelineOf(R"({"at": 2, "do": "exit"}, {"at": 0.5, "do": "stickSwitch"},
                                      {"at": 0.5, "do": "restore"}, {"at": 0, "do": "freeze"})");
    ASSERT_EQ(events.size(), 4U);
    EXPECT_EQ(events[0].name, "freeze");
    EXPECT_EQ(events[1].name, "stickSwitch");
    EXPECT_EQ(events[2].name, "restore");
    EXPECT_EQ(events[3].name, "exit");
    EXPECT_EQ(events[1].at, 500ms);
    EXPECT_EQ(events[3].at, 2s);
}

TEST(TimelineReader, readsChangedFields) {
    const auto set = actionOf<SetFields>(
        R"({"at": 1, "do": "set", "state": {"hostname": "x"}, "extended": {"serverWord": 3}})");
    ASSERT_EQ(set.state.size(), 1U);
    EXPECT_STREQ(set.state[0].field->key, "hostname");
    EXPECT_EQ(std::get<std::string>(set.state[0].value), "x");
    ASSERT_EQ(set.extended.size(), 1U);
    EXPECT_EQ(std::get<int32_t>(set.extended[0].value), 3);
}

TEST(TimelineReader, readsReplacedNetworks) {
    const auto replacement = actionOf<ReplaceNetworks>(
        R"({"at": 1, "do": "replaceNetworks", "networks": [{"ssid": "a"}]})");
    EXPECT_EQ(replacement.networks.size(), 1U);
}

TEST(TimelineReader, readsAnIgnoredCommandWithOrWithoutANumberOfFrames) {
    const auto always =
        actionOf<IgnoreCommand>(R"({"at": 1, "do": "ignoreCommand", "command": 10})");
    EXPECT_EQ(always.command, 10U);
    EXPECT_EQ(always.frames, std::nullopt);
    const auto twice = actionOf<IgnoreCommand>(
        R"({"at": 1, "do": "ignoreCommand", "command": 4294967295, "frames": 2})");
    EXPECT_EQ(twice.command, 4294967295U);
    EXPECT_EQ(twice.frames, 2U);
}

TEST(TimelineReader, readsAgesOfBothSigns) {
    EXPECT_EQ(
        actionOf<AgeTimestamps>(R"({"at": 1, "do": "ageTimestamps", "seconds": 301})").seconds,
        301);
    EXPECT_EQ(
        actionOf<AgeTimestamps>(R"({"at": 1, "do": "ageTimestamps", "seconds": -10})").seconds,
        -10);
}

TEST(TimelineReader, readsAFreezeOfOneSegmentOrOfAll) {
    EXPECT_EQ(actionOf<Freeze>(R"({"at": 1, "do": "freeze"})").segment, std::nullopt);
    EXPECT_EQ(actionOf<Freeze>(R"({"at": 1, "do": "freeze", "segment": "extended"})").segment,
              Segment::Extended);
}

TEST(TimelineReader, readsHeaderFaults) {
    EXPECT_EQ(
        actionOf<InvalidateHeader>(R"({"at": 1, "do": "invalidateHeader", "segment": "networks"})")
            .segment,
        Segment::Networks);
    const auto change =
        actionOf<ChangeVersion>(R"({"at": 1, "do": "changeVersion", "segment": "state"})");
    EXPECT_EQ(change.segment, Segment::State);
    EXPECT_EQ(change.version, 2U);
    EXPECT_EQ(actionOf<ChangeVersion>(
                  R"({"at": 1, "do": "changeVersion", "segment": "state", "version": 0})")
                  .version,
              0U);
}

TEST(TimelineReader, readsADeathInAnySegment) {
    const std::pair<const char*, Segment> names[] = {{"state", Segment::State},
                                                     {"extended", Segment::Extended},
                                                     {"networks", Segment::Networks},
                                                     {"commands", Segment::Commands}};
    for (const auto& [name, segment] : names) {
        const std::string event =
            R"({"at": 1, "do": "dieHoldingLock", "segment": ")" + std::string(name) + R"("})";
        EXPECT_EQ(actionOf<DieHoldingLock>(event).segment, segment) << name;
    }
}

TEST(TimelineReader, readsAVanishing) {
    EXPECT_EQ(actionOf<Vanish>(R"({"at": 1, "do": "vanish", "seconds": 1.5})").duration, 1500ms);
}

TEST(TimelineReader, readsEventsWithoutArguments) {
    const auto events = timelineOf(R"({"at": 1, "do": "stickSwitch"}, {"at": 1, "do": "restore"},
                                      {"at": 1, "do": "stopDraining"},
                                      {"at": 1, "do": "resumeDraining"}, {"at": 1, "do": "exit"})");
    ASSERT_EQ(events.size(), 5U);
    EXPECT_TRUE(std::holds_alternative<StickSwitch>(events[0].action));
    EXPECT_TRUE(std::holds_alternative<Restore>(events[1].action));
    EXPECT_TRUE(std::holds_alternative<StopDraining>(events[2].action));
    EXPECT_TRUE(std::holds_alternative<ResumeDraining>(events[3].action));
    EXPECT_TRUE(std::holds_alternative<Exit>(events[4].action));
}

TEST(TimelineReader, refusesAnUnknownEventAndNamesTheKnownOnes) {
    EXPECT_EQ(errorOf(R"({"at": 1, "do": "explode"})"),
              "timeline[0].do: expected set, replaceNetworks, ignoreCommand, stickSwitch, "
              "ageTimestamps, freeze, invalidateHeader, changeVersion, restore, stopDraining, "
              "resumeDraining, dieHoldingLock, vanish or exit, found \"explode\"");
}

TEST(TimelineReader, refusesAnEventWithoutNameOrTime) {
    EXPECT_EQ(errorOf(R"({"at": 1})"), "timeline[0].do: missing, expected the name of an event");
    EXPECT_EQ(errorOf(R"({"do": "exit"})"),
              "timeline[0].at: missing, expected a number of seconds");
}

TEST(TimelineReader, refusesAnEventThatIsNoObject) {
    EXPECT_EQ(errorOf("5"), "timeline[0]: expected an object, found 5");
}

TEST(TimelineReader, refusesTimesOutsideTheirRange) {
    EXPECT_EQ(errorOf(R"({"at": -1, "do": "exit"})"),
              "timeline[0].at: expected a number from 0.0 to 1000000.0, found -1");
    EXPECT_EQ(errorOf(R"({"at": "soon", "do": "exit"})"),
              "timeline[0].at: expected a number from 0.0 to 1000000.0, found \"soon\"");
    EXPECT_EQ(errorOf(R"({"at": 1, "do": "vanish", "seconds": 1e7})"),
              "timeline[0].seconds: expected a number from 0.0 to 1000000.0, found 10000000.0");
}

TEST(TimelineReader, refusesArgumentsOfOtherEvents) {
    EXPECT_EQ(errorOf(R"({"at": 1, "do": "exit", "segment": "state"})"),
              "timeline[0].segment: unknown key, expected at or do");
}

TEST(TimelineReader, refusesMissingArguments) {
    EXPECT_EQ(errorOf(R"({"at": 1, "do": "invalidateHeader"})"),
              "timeline[0].segment: missing, expected the segment's name");
    EXPECT_EQ(errorOf(R"({"at": 1, "do": "ignoreCommand"})"),
              "timeline[0].command: missing, expected a command's number");
    EXPECT_EQ(errorOf(R"({"at": 1, "do": "ageTimestamps"})"),
              "timeline[0].seconds: missing, expected an age in seconds");
    EXPECT_EQ(errorOf(R"({"at": 1, "do": "vanish"})"),
              "timeline[0].seconds: missing, expected a number of seconds");
    EXPECT_EQ(errorOf(R"({"at": 1, "do": "replaceNetworks"})"),
              "timeline[0].networks: missing, expected an array of networks");
}

TEST(TimelineReader, refusesSegmentsThatHaveNoSuchFault) {
    EXPECT_EQ(errorOf(R"({"at": 1, "do": "freeze", "segment": "commands"})"),
              "timeline[0].segment: expected state, extended or networks, found \"commands\"");
    EXPECT_EQ(errorOf(R"({"at": 1, "do": "dieHoldingLock", "segment": 5})"),
              "timeline[0].segment: expected state, extended, networks or commands, found 5");
}

TEST(TimelineReader, namesTheFullPathOfAFaultInsideAnEvent) {
    EXPECT_EQ(errorOf(R"({"at": 1, "do": "restore"},
                         {"at": 1, "do": "set", "state": {"connectivityType": true}})"),
              "timeline[1].state.connectivityType: expected a whole number from -2147483648 to "
              "2147483647, found true");
    EXPECT_EQ(
        errorOf(R"({"at": 1, "do": "replaceNetworks", "networks": [{"sid": 1}]})"),
        "timeline[0].networks[0].sid: unknown key, expected ssid, encryptionType or signalLevel");
    EXPECT_EQ(errorOf(R"({"at": 1, "do": "ignoreCommand", "command": 10, "frames": 0})"),
              "timeline[0].frames: expected a whole number from 1 to 4294967295, found 0");
}

}  // namespace
