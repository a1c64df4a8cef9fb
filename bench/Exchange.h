// A client and the server's side of its shared memory, in one process: what a measurement needs to
// take the paths of a device with a running server.
#pragma once

#include <cstdint>
#include <string>

#include "Vantric/ModemClient.h"
#include "tests/support/PublishedServer.h"

namespace vantric_bench {

struct Exchange {
    // The basic state, published so that it stays fresh for a day, and a list of ten networks.
    // Throws std::runtime_error when the client cannot connect.
    Exchange();

    // Takes out all commands and returns their number. Throws std::runtime_error at a frame with
    // another command or payload.
    int takeAll(uint32_t command, const std::string& payload);

    vantric_test::PublishedServer server;
    com_qel::Orvane::Vantric::ModemClient client;
};

// The one of this process. It is made at the first call.
Exchange& exchange();

}  // namespace vantric_bench
