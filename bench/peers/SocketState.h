// The state from a server process, asked for over a Unix socket.
#pragma once

#include "Vantric/ModemState.h"
#include "bench/support/ForkedProcess.h"

namespace vantric_bench {

class SocketState {
  public:
    explicit SocketState(const com_qel::Orvane::Vantric::ModemState& published);
    ~SocketState();

    SocketState(const SocketState&) = delete;
    SocketState& operator=(const SocketState&) = delete;

    bool read(com_qel::Orvane::Vantric::ModemState& record) const;

  private:
    struct Ends {
        int client;
        int server;
    };
    static Ends connectedEnds();

    Ends ends_;
    ForkedProcess server_;
};

}  // namespace vantric_bench
