#include "sim/SimulatedServer.h"

#include <utility>
#include <vector>

namespace vantric_sim {

namespace {

using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands;

// Larger than any payload: a length that comes back unchanged then means a frame without payload.
constexpr uint32_t payloadBufferSize = 4097;

// As many as a full ring can hold: endless senders must not keep the server from its other work.
constexpr int mostFramesPerDrain = 512;

// Ends or interrupts the server, so it cannot happen before the server runs.
bool needsRunningServer(const Action& action) {
    return std::holds_alternative<DieHoldingLock>(action) ||
           std::holds_alternative<Vanish>(action) || std::holds_alternative<Exit>(action);
}

// The next time in steps of `interval` behind `due`; steps that were missed are skipped.
SteadyTime nextTime(SteadyTime due, milliseconds interval, SteadyTime now) {
    const SteadyTime next = due + interval;
    return next > now ? next : now + interval;
}

}  // namespace

SimulatedServer::SimulatedServer(Scenario scenario, LineOutput output)
    : scenario_(std::move(scenario)),
      output_(std::move(output)),
      publisher_(scenario_, faults_),
      reactions_(scenario_, faults_, publisher_, schedule_) {}

void SimulatedServer::start(SteadyTime now) {
    startTime_ = now;
    now_ = now;
    const auto& timeline = scenario_.timeline;
    while (nextEvent_ < timeline.size() && timeline[nextEvent_].at == milliseconds::zero() &&
           !needsRunningServer(timeline[nextEvent_].action)) {
        perform(timeline[nextEvent_++]);
    }
    attach();
}

bool SimulatedServer::step(SteadyTime now) {
    now_ = now;
    returnWhenDue();
    runTimeline();
    schedule_.runDue(now_);
    if (!isOver_ && !returnTime_) {
        drainWhenDue();
        publishWhenDue();
    }
    return !isOver_;
}

void SimulatedServer::attach() {
    publisher_.attach();
    constexpr bool asConsumer = true;
    commands_ = std::make_unique<SharedMemoryModemCommands>(asConsumer);
    nextDrain_ = now_;
    nextPublish_ = now_ + scenario_.intervals.publish;
}

void SimulatedServer::detach() {
    commands_.reset();
    publisher_.detach();
    reactions_.forgetPending();
}

void SimulatedServer::returnWhenDue() {
    if (returnTime_ && *returnTime_ <= now_) {
        returnTime_.reset();
        attach();
        report("returned");
    }
}

void SimulatedServer::runTimeline() {
    const auto& timeline = scenario_.timeline;
    while (!isOver_ && nextEvent_ < timeline.size() &&
           startTime_ + timeline[nextEvent_].at <= now_) {
        report(eventText(timeline[nextEvent_].name));
        perform(timeline[nextEvent_++]);
    }
}

void SimulatedServer::drainWhenDue() {
    if (faults_.drainingIsStopped || now_ < nextDrain_) {
        return;
    }
    nextDrain_ = nextTime(nextDrain_, scenario_.intervals.drain, now_);
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
        nextPublish_ = nextTime(nextPublish_, scenario_.intervals.publish, now_);
        publisher_.publishState();
    }
}

void SimulatedServer::receive(uint32_t command, std::string_view payload) {
    report(frameText(command, payload));
    if (!faults_.takeIgnored(command) && !reactions_.receive(command, payload, now_)) {
        report(malformedFrameText(command));
    }
}

void SimulatedServer::report(const std::string& text) {
    output_(stampText(std::chrono::system_clock::now()) + " " + text);
}

void SimulatedServer::perform(const TimelineEvent& event) {
    std::visit([this](const auto& action) { perform(action); }, event.action);
}

void SimulatedServer::perform(const SetFields& set) {
    applyChanges(&publisher_.state, set.state);
    applyChanges(&publisher_.extended, set.extended);
    publisher_.publishState();
    publisher_.publishExtended();
}

void SimulatedServer::perform(const ReplaceNetworks& replacement) {
    publisher_.networksInRange = replacement.networks;
}

void SimulatedServer::perform(const IgnoreCommand& ignore) {
    faults_.ignoredFrames[ignore.command] = ignore.frames;
}

void SimulatedServer::perform(const StickSwitch&) {
    faults_.switchIsStuck = true;
}

void SimulatedServer::perform(const AgeTimestamps& age) {
    faults_.timestampAge = age.seconds;
    publisher_.publishState();
}

void SimulatedServer::perform(const Freeze& freeze) {
    if (freeze.segment) {
        faults_.of(*freeze.segment).frozen = true;
        return;
    }
    for (SegmentFaults& faults : faults_.segments) {
        faults.frozen = true;
    }
}

void SimulatedServer::perform(const InvalidateHeader& invalidate) {
    faults_.of(invalidate.segment).invalid = true;
    publisher_.publishAll();
}

void SimulatedServer::perform(const ChangeVersion& change) {
    faults_.of(change.segment).version = change.version;
    publisher_.publishAll();
}

void SimulatedServer::perform(const Restore&) {
    faults_ = Faults();
    publisher_.publishAll();
}

void SimulatedServer::perform(const StopDraining&) {
    faults_.drainingIsStopped = true;
}

void SimulatedServer::perform(const ResumeDraining&) {
    faults_.drainingIsStopped = false;
}

void SimulatedServer::perform(const DieHoldingLock& death) {
    publisher_.dieHoldingLock(death.segment);
}

void SimulatedServer::perform(const Vanish& vanish) {
    detach();
    returnTime_ = now_ + vanish.duration;
}

void SimulatedServer::perform(const Exit&) {
    isOver_ = true;
}

}  // namespace vantric_sim
