// A server without a device: it publishes records, takes commands out of the ring, reacts to them
// and lets the scenario's timeline happen.
//
// The caller drives it by step() and hands in the steady time, so that a test needs no waiting.
// Ownership: owns its attachments; destroying the server detaches from all of them.
// Thread-safety: none. Process-safety: it is the ring's one consumer, so there may be only one.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "sim/EventLog.h"
#include "sim/Faults.h"
#include "sim/Publisher.h"
#include "sim/Scenario.h"

namespace vantric_sim {

using SteadyTime = std::chrono::steady_clock::time_point;

class SimulatedServer {
  public:
    using Change = std::function<void(Publisher& publisher)>;

    // Attaches to nothing yet. `output` gets one line for each frame and event.
    SimulatedServer(Scenario initialScenario, LineOutput output);

    SimulatedServer(const SimulatedServer&) = delete;
    SimulatedServer& operator=(const SimulatedServer&) = delete;

    // Lets the events of time 0 happen, unreported, attaches as consumer and publishes the three
    // segments. Events that end or interrupt the server, and those after them, wait for the first
    // step. Passes on the std::runtime_error of a segment that cannot be mapped. Call once.
    void start(SteadyTime now);

    // Does whatever is due; `now` must not go back. False when the timeline ends the server.
    bool step(SteadyTime now);

    // What follows is for the events of the timeline and the reactions to commands.

    // Detaches from everything, dropping reactions in progress, and attaches again later.
    void vanish(milliseconds duration);

    // Makes the current step the last one.
    void end() { isOver_ = true; }

    // Changes the records this long after the current step's time. True, the result of a reaction.
    bool after(milliseconds delay, Change change);

    const Scenario scenario;
    Faults faults;
    Publisher publisher;

  private:
    void attach();
    void detach();
    void returnWhenDue();
    void runTimeline();
    void reactWhenDue();
    void drainWhenDue();
    void publishWhenDue();
    void receive(uint32_t command, std::string_view payload);
    void report(const std::string& text);

    const LineOutput output_;
    std::multimap<SteadyTime, Change> pending_;  // reactions to come, by the time they are due
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
