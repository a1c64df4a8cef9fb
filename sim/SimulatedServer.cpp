#include "sim/SimulatedServer.h"

#include <utility>
#include <vector>

#include "sim/CommandTable.h"

namespace vantric_sim {

namespace {

using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands;

// Larger than any payload: a length that comes back unchanged then means a frame without payload.
constexpr uint32_t payloadBufferSize = 4097;

// As many as a full ring can hold: endless senders must not keep the server from its other work.
constexpr int mostFramesPerDrain = 512;

// The next time in steps of `interval` after `due`; steps that were missed are skipped.
SteadyTime nextTime(SteadyTime due, milliseconds interval, SteadyTime now) {
    const SteadyTime next = due + interval;
    return next > now ? next : now + interval;
}

}  // namespace

SimulatedServer::SimulatedServer(Scenario initialScenario, LineOutput output)
    : scenario(std::move(initialScenario)),
      publisher(scenario, faults),
      output_(std::move(output)) {}

void SimulatedServer::start(SteadyTime now) {
    startTime_ = now;
    now_ = now;
    const auto& timeline = scenario.timeline;
    while (nextEvent_ < timeline.size() && timeline[nextEvent_].at == milliseconds::zero() &&
           !timeline[nextEvent_].needsRunningServer) {
        timeline[nextEvent_++].perform(*this);
    }
    attach();
}

bool SimulatedServer::step(SteadyTime now) {
    now_ = now;
    returnWhenDue();
    runTimeline();
    reactWhenDue();
    if (!isOver_ && !returnTime_) {
        drainWhenDue();
        publishWhenDue();
    }
    return !isOver_;
}

void SimulatedServer::attach() {
    publisher.attach();
    constexpr bool asConsumer = true;
    commands_ = std::make_unique<SharedMemoryModemCommands>(asConsumer);
    nextDrain_ = now_;
    nextPublish_ = now_ + scenario.intervals.publish;
}

void SimulatedServer::detach() {
    commands_.reset();
    publisher.detach();
    pending_.clear();
    publisher.configurationsLoading = 0;
}

void SimulatedServer::returnWhenDue() {
    if (returnTime_ && *returnTime_ <= now_) {
        returnTime_.reset();
        attach();
        report("returned");
    }
}

void SimulatedServer::runTimeline() {
    const auto& timeline = scenario.timeline;
    while (!isOver_ && nextEvent_ < timeline.size() &&
           startTime_ + timeline[nextEvent_].at <= now_) {
        report(std::string("event ") + timeline[nextEvent_].name);
        timeline[nextEvent_++].perform(*this);
    }
}

void SimulatedServer::reactWhenDue() {
    for (auto next = pending_.begin(); next != pending_.end() && next->first <= now_;
         next = pending_.erase(next)) {
        next->second(publisher);
    }
}

void SimulatedServer::drainWhenDue() {
    if (faults.drainingIsStopped || now_ < nextDrain_) {
        return;
    }
    nextDrain_ = nextTime(nextDrain_, scenario.intervals.drain, now_);
    std::vector<char> buffer(payloadBufferSize);
    for (int count = 0; count < mostFramesPerDrain; ++count) {
        uint32_t command = 0;
        uint32_t size = payloadBufferSize;
        if (!commands_->dequeue(command, buffer.data(), &size)) {
            return;
        }
        receive(command, {buffer.data(), size == payloadBufferSize ? 0 : size});
    }
}

void SimulatedServer::publishWhenDue() {
    if (now_ >= nextPublish_) {
        nextPublish_ = nextTime(nextPublish_, scenario.intervals.publish, now_);
        publisher.publishState();
    }
}

void SimulatedServer::receive(uint32_t command, std::string_view payload) {
    const CommandDescription* known = findCommand(command);
    const std::string name = known != nullptr ? known->name : "Unknown";
    report("frame " + std::to_string(command) + " " + name + " " + std::to_string(payload.size()) +
           " " + quoted(payload));
    if (!faults.takeIgnored(command) && known != nullptr &&
        !reactTo(known->command, *this, payload)) {
        report("malformed " + name + ": expected " + known->payload);
    }
}

void SimulatedServer::report(const std::string& text) {
    output_(stampText(std::chrono::system_clock::now()) + " " + text);
}

void SimulatedServer::vanish(milliseconds duration) {
    detach();
    returnTime_ = now_ + duration;
}

bool SimulatedServer::after(milliseconds delay, Change change) {
    pending_.emplace(now_ + delay, std::move(change));
    return true;
}

}  // namespace vantric_sim
