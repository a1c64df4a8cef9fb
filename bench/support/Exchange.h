// A client and the server's side of its shared memory, in one process: what a measurement needs to
// take the paths of a device with a running server.
#pragma once

#include "Vantric/ClientServer/SharedMemoryModemState.h"
#include "Vantric/ModemClient.h"
#include "bench/support/CommandDrain.h"

namespace vantric_bench {

struct Exchange {
    // All three states published, the basic one so that it stays fresh for a day. Throws
    // std::runtime_error when the client cannot connect.
    Exchange();

    void publishNetworks(int count);

    // What the server does after a scan or a refresh, without a lock: for the one thread only.
    void bumpUpdateCounters();

    com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemState state;
    com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemStateExtended extendedState;
    com_qel::Orvane::Vantric::ClientServer::SharedMemoryWifiList wifiList;
    CommandDrain commands;
    com_qel::Orvane::Vantric::ModemClient client;
};

}  // namespace vantric_bench
