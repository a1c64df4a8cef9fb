// A server without a device: it publishes records, takes commands out of the ring, reacts to them
// and lets the scenario's timeline happen.
//
// The caller drives it by step() and hands in the steady time, so that a test needs no waiting.
// Ownership: owns its attachments; destroying the server detaches from all of them.
// Thread-safety: none. Process-safety: it is the ring's one consumer, so there may be only one.
#pragma once

#include <memory>
#include <optional>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "sim/EventLog.h"
#include "sim/Faults.h"
#include "sim/Publisher.h"
#include "sim/Reactions.h"
#include "sim/Scenario.h"
#include "sim/Schedule.h"

namespace vantric_sim {

class SimulatedServer {
  public:
    // Attaches to nothing yet. `output` gets one line for each frame and event.
    SimulatedServer(Scenario scenario, LineOutput output);

    SimulatedServer(const SimulatedServer&) = delete;
    SimulatedServer& operator=(const SimulatedServer&) = delete;

    // Lets the events of time 0 happen, unreported, attaches as consumer and publishes the three
    // segments. Events that end or interrupt the server, and those behind them, wait for the first
    // step. Passes on the std::runtime_error of a segment that cannot be mapped. Call once.
    void start(SteadyTime now);

    // Does whatever is due; `now` must not go back. False when the timeline ends the server.
    bool step(SteadyTime now);

  private:
    void attach();
    void detach();
    void returnWhenDue();
    void runTimeline();
    void drainWhenDue();
    void publishWhenDue();
    void receive(uint32_t command, std::string_view payload);
    void report(const std::string& text);

    void perform(const TimelineEvent& event);
    void perform(const SetFields& set);
    void perform(const ReplaceNetworks& replacement);
    void perform(const IgnoreCommand& ignore);
    void perform(const StickSwitch& stick);
    void perform(const AgeTimestamps& age);
    void perform(const Freeze& freeze);
    void perform(const InvalidateHeader& invalidate);
    void perform(const ChangeVersion& change);
    void perform(const Restore& restore);
    void perform(const StopDraining& stop);
    void perform(const ResumeDraining& resume);
    void perform(const DieHoldingLock& death);
    void perform(const Vanish& vanish);
    void perform(const Exit& exit);

    const Scenario scenario_;
    const LineOutput output_;
    Faults faults_;
    Publisher publisher_;
    Schedule schedule_;
    Reactions reactions_;
    std::unique_ptr<com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands> commands_;

    SteadyTime startTime_;
    SteadyTime now_;
    SteadyTime nextPublish_;
    SteadyTime nextDrain_;
    std::size_t nextEvent_ = 0;
    std::optional<SteadyTime> returnTime_;  // while it has vanished
    bool isOver_ = false;
};

}  // namespace vantric_sim
