// What the server does about a command: a change of its records, published after a delay.
//
// Thread-safety: none. Everything handed to the constructor must outlive the object, and the
// schedule must not run its work once it is gone.
#pragma once

#include <cstdint>
#include <string_view>

#include "sim/CommandPayload.h"
#include "sim/Faults.h"
#include "sim/Publisher.h"
#include "sim/Scenario.h"
#include "sim/Schedule.h"

namespace vantric_sim {

class Reactions {
  public:
    Reactions(const Scenario& scenario, const Faults& faults, Publisher& publisher,
              Schedule& schedule);

    // Schedules the effect of a frame that arrived at `now`. False for a malformed payload, which
    // has no effect. Commands without an effect are always well-formed.
    bool receive(uint32_t command, std::string_view payload, SteadyTime now);

    // Drops the effects to come.
    void forgetPending();

  private:
    struct Entry;

    bool switchToWifi(std::string_view payload);
    bool switchToCarrier(std::string_view payload);
    bool joinNetwork(std::string_view payload);
    bool setEncryption(std::string_view payload);
    bool loadConfiguration(std::string_view payload);
    bool scan(std::string_view payload);
    bool refresh(std::string_view payload);
    bool connect(std::string_view payload);
    bool connectByRadius(std::string_view payload);

    bool switchConnectivity(std::string_view payload, int32_t type);
    bool connectTo(const std::optional<Connection>& connection);
    void applyEncryption(int32_t type, const std::string& password);
    void applySsid(const std::string& ssid);
    void after(milliseconds delay, Schedule::Work work);

    const Scenario& scenario_;
    const Faults& faults_;
    Publisher& publisher_;
    Schedule& schedule_;
    SteadyTime now_;
    int configurationsLoading_ = 0;
};

}  // namespace vantric_sim
