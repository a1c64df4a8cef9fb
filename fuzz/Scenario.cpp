// Scenario files of the simulated server: a text is either refused with an orderly message or
// played on a clock that this target moves, with every command arriving on the way.
//
// Input: the text.
#include <algorithm>
#include <chrono>
#include <cstring>
#include <string>
#include <string_view>
#include <variant>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "Vantric/ClientServer/SharedMemoryModemState.h"
#include "fuzz/Target.h"
#include "sim/ScenarioFile.h"
#include "sim/SimulatedServer.h"

namespace {

using namespace com_qel::Orvane::Vantric::ClientServer;
using com_qel::Orvane::Vantric::WifiInfosList;
using com_qel::Orvane::Vantric::WifiListEntry;
using vantric_fuzz::require;
using vantric_sim::Scenario;
using vantric_sim::ScenarioError;
using vantric_sim::SteadyTime;

constexpr int steps = 30;

// Attached before and after every server: the objects stay, and the server's detaching is seen.
struct Observer {
    SharedMemoryModemState state;
    SharedMemoryModemStateExtended extended;
    SharedMemoryWifiList list;
    SharedMemoryModemCommands commands{false};
};

struct Frame {
    uint32_t command;
    std::string_view payload;
};

// Well-formed and not, one at each step until there are no more.
constexpr Frame frames[] = {
    {5, ""},         {6, ""},           {7, "home"},     {8, "2,secret"},  {8, "0,0"},
    {9, "a/b.cfg"},  {10, ""},          {11, ""},        {12, "text\n\""}, {13, "first,second"},
    {14, "n,2,p,w"}, {15, "n,5,u,p,w"}, {14, "n"},       {15, "n,x,u,p"},  {8, "99999999999,p"},
    {9, ""},         {7, ""},           {4000000000, ""}};

template <std::size_t size>
bool isTerminated(const char (&field)[size]) {
    return std::memchr(field, 0, size) != nullptr;
}

void requireSoundRecords(Observer& observer) {
    const auto* basic = &observer.state.accessor().memory()->record;
    require(isTerminated(basic->wifiSsid) && isTerminated(basic->wifiPassword) &&
                isTerminated(basic->hostname) && isTerminated(basic->wifiConnectionState),
            "the state's texts are terminated");
    const auto* more = &observer.extended.accessor().memory()->record;
    require(isTerminated(more->wifiSsid) && isTerminated(more->wifiEncryptionName) &&
                isTerminated(more->ipv4Address) && isTerminated(more->macAddress),
            "the extended state's texts are terminated");
    const auto* found = &observer.list.accessor().memory()->record;
    const int32_t count = found->count;
    require(count >= 0 && count <= WifiInfosList::maximumCount, "the list's count is in range");
    require(std::all_of(found->entries, found->entries + count,
                        [](const WifiListEntry& entry) { return isTerminated(entry.ssid); }),
            "the list's names are terminated");
}

bool isPrintable(const std::string& line) {
    return std::all_of(line.begin(), line.end(),
                       [](char byte) { return byte >= ' ' && byte <= '~'; });
}

bool isBetween(std::chrono::milliseconds value, int64_t smallest, int64_t largest) {
    return value.count() >= smallest && value.count() <= largest;
}

// What was accepted lies in the documented ranges.
void requireRanges(const Scenario& scenario) {
    constexpr int64_t hour = 3'600'000;
    constexpr int64_t longestTime = 1'000'000'000;
    const vantric_sim::Delays& delays = scenario.delays;
    for (const auto delay : {delays.switchConnectivity, delays.joinNetwork, delays.setEncryption,
                             delays.configurationStart, delays.configurationLoad, delays.scan,
                             delays.refresh, delays.connect}) {
        require(isBetween(delay, 0, hour), "a delay is in its range");
    }
    for (const auto interval : {scenario.intervals.publish, scenario.intervals.drain}) {
        require(isBetween(interval, 1, hour), "an interval is in its range");
    }
    std::chrono::milliseconds previous(0);
    for (const vantric_sim::TimelineEvent& event : scenario.timeline) {
        require(isBetween(event.at, previous.count(), longestTime),
                "events stand in order of time, in its range");
        previous = event.at;
    }
}

// An event that kills the process is no crash; it is left out.
void removeDeaths(Scenario& scenario) {
    auto& timeline = scenario.timeline;
    timeline.erase(
        std::remove_if(timeline.begin(), timeline.end(),
                       [](const vantric_sim::TimelineEvent& event) {
                           return std::holds_alternative<vantric_sim::DieHoldingLock>(event.action);
                       }),
        timeline.end());
}

void play(const Scenario& scenario, Observer& observer) {
    vantric_sim::SimulatedServer server(scenario, [](const std::string& line) {
        require(isPrintable(line), "what the server prints is printable");
    });
    SteadyTime now = SteadyTime(std::chrono::hours(1));
    server.start(now);
    requireSoundRecords(observer);
    std::chrono::milliseconds stride(5);
    for (std::size_t step = 0; step < steps; ++step) {
        if (step < std::size(frames)) {
            const Frame& frame = frames[step];
            observer.commands.enqueue(frame.command, frame.payload.data(),
                                      static_cast<uint32_t>(frame.payload.size()));
        } else {
            stride *= 3;  // in the end, longer than any delay
        }
        now += stride;
        if (!server.step(now)) {
            break;
        }
        requireSoundRecords(observer);
    }
}

void requireNobodyElseAttached(Observer& observer) {
    const auto countBefore = [](const void* payload) {
        uint32_t count = 0;
        std::memcpy(&count, static_cast<const unsigned char*>(payload) - sizeof(count),
                    sizeof(count));
        return count;
    };
    require(countBefore(observer.state.accessor().memory()) == 1 &&
                countBefore(observer.extended.accessor().memory()) == 1 &&
                countBefore(observer.list.accessor().memory()) == 1,
            "a server that has gone is attached to nothing");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    Scenario scenario;
    try {
        scenario = vantric_sim::parseScenario(text);
    } catch (const ScenarioError& error) {
        const std::string reason = error.what();
        require(!reason.empty(), "a refused text has a reason");
        require(std::none_of(reason.begin(), reason.end(),
                             [](unsigned char byte) { return byte < ' ' || byte == 0x7f; }),
                "a reason is free of control characters");
        return 0;
    }
    requireRanges(scenario);
    removeDeaths(scenario);
    Observer observer;
    play(scenario, observer);
    requireNobodyElseAttached(observer);
    return 0;
}
