// The server's records and their three segments.
//
// Owners change the records and say what to publish; the faults decide how it shows. Detached, the
// records stay and publishing does nothing.
// Thread-safety: none. Process-safety: as the segments'.
#pragma once

#include <memory>
#include <vector>

#include "Vantric/ClientServer/SharedMemoryModemState.h"
#include "Vantric/ModemState.h"
#include "sim/Faults.h"
#include "sim/Scenario.h"

namespace vantric_sim {

class Publisher {
  public:
    // Detached, with the scenario's initial records. `faults` must outlive this.
    Publisher(const Scenario& scenario, Faults& faults);
    ~Publisher();

    Publisher(const Publisher&) = delete;
    Publisher& operator=(const Publisher&) = delete;

    // What publishing shows from then on.
    ModemState state;
    ModemStateExtended extended;
    std::vector<WifiListEntry> networksInRange;  // for the next scan
    int configurationsLoading = 0;               // the state is unreadable meanwhile

    // Maps the segments and publishes everything; passes on what mapping throws.
    void attach();
    void detach();

    void publishState();
    void publishExtended();
    void publishNetworks();
    void publishAll();

    // Publish a record that changed with its counter, as clients wait for.
    void scan();
    void refreshExtended();

    // Ends the process while it holds a contents lock.
    [[noreturn]] void dieHoldingLock(Segment segment);

  private:
    struct Segments;

    Faults& faults_;
    com_qel::Orvane::Vantric::WifiInfosList foundNetworks_;  // by the last scan
    std::unique_ptr<Segments> segments_;                     // null when detached
};

}  // namespace vantric_sim
