// Commands as calls of a D-Bus method, each answered.
#pragma once

#include <string>

#include "bench/peers/PeerMessage.h"
#include "bench/peers/PrivateBus.h"

namespace vantric_bench {

class BusQueue {
  public:
    static constexpr int batchSize = 8;

    bool send() {
        sd_bus_message* call = nullptr;
        const bool isSent =
            sd_bus_message_new_method_call(bus_.connection(), &call, busService, busObject,
                                           busInterface, "Command") >= 0 &&
            sd_bus_message_append(call, "u", message_.command) >= 0 &&
            sd_bus_message_append_array(call, 'y', message_.payload, sizeof(message_.payload)) >=
                0 &&
            sd_bus_call(bus_.connection(), call, 0, nullptr, nullptr) >= 0;
        sd_bus_message_unref(call);
        return isSent;
    }

    int takeAll() {
        const int before = taken_;
        taken_ = bus_.commandCount();
        return taken_ - before;
    }

  private:
    PeerMessage message_;
    PrivateBus bus_{{}, std::string(message_.payload, sizeof(message_.payload))};
    int taken_ = 0;
};

}  // namespace vantric_bench
