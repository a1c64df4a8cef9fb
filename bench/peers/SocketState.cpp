#include "bench/peers/SocketState.h"

#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

#include "bench/floors/RecordFloor.h"

namespace vantric_bench {

SocketState::Ends SocketState::connectedEnds() {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends) != 0) {
        throw std::runtime_error("cannot make a socket");
    }
    return {ends[0], ends[1]};
}

SocketState::SocketState(const com_qel::Orvane::Vantric::ModemState& published)
    : ends_(connectedEnds()), server_([this, published] {
          close(ends_.client);
          char request = 0;
          while (recv(ends_.server, &request, sizeof(request), 0) == sizeof(request)) {
              send(ends_.server, &published, sizeof(published), 0);
          }
      }) {}

SocketState::~SocketState() {
    close(ends_.client);
    close(ends_.server);
}

bool SocketState::read(com_qel::Orvane::Vantric::ModemState& record) const {
    const char request = 1;
    return send(ends_.client, &request, sizeof(request), 0) == sizeof(request) &&
           recv(ends_.client, &record, sizeof(record), 0) == sizeof(record) && isFresh(record);
}

}  // namespace vantric_bench
