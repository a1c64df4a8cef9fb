// The state as a property of a D-Bus object.
#pragma once

#include <cstring>

#include "bench/floors/RecordFloor.h"
#include "bench/peers/PrivateBus.h"

namespace vantric_bench {

class BusState {
  public:
    explicit BusState(const com_qel::Orvane::Vantric::ModemState& published)
        : bus_(published, "") {}

    bool read(com_qel::Orvane::Vantric::ModemState& record) const {
        sd_bus_message* reply = nullptr;
        const void* bytes = nullptr;
        std::size_t size = 0;
        const bool isRead =
            sd_bus_get_property(bus_.connection(), busService, busObject, busInterface, "State",
                                nullptr, &reply, "ay") >= 0 &&
            sd_bus_message_read_array(reply, 'y', &bytes, &size) >= 0 && size == sizeof(record);
        if (isRead) {
            std::memcpy(static_cast<void*>(&record), bytes, size);
        }
        sd_bus_message_unref(reply);
        return isRead && isFresh(record);
    }

  private:
    PrivateBus bus_;
};

}  // namespace vantric_bench
