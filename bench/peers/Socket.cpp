// A Unix socket: the state from a server process that answers a request; commands as datagrams.
#include <sys/socket.h>
#include <unistd.h>

#include <memory>
#include <stdexcept>

#include "bench/ForkedProcess.h"
#include "bench/Operation.h"
#include "bench/floors/RecordFloor.h"
#include "bench/peers/PeerMessage.h"
#include "tests/support/PublishedServer.h"

namespace vantric_bench {

namespace {

using com_qel::Orvane::Vantric::ModemState;

class SocketPair {
  public:
    SocketPair() {
        if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends_) != 0) {
            throw std::runtime_error("cannot make a socket");
        }
    }
    ~SocketPair() {
        close(ends_[0]);
        close(ends_[1]);
    }
    SocketPair& operator=(SocketPair&&) = delete;

    int client() const { return ends_[0]; }
    int server() const { return ends_[1]; }

  private:
    int ends_[2] = {-1, -1};
};

class SocketState {
  public:
    bool read(ModemState& record) const {
        const char request = 1;
        return send(sockets_.client(), &request, sizeof(request), 0) == sizeof(request) &&
               recv(sockets_.client(), &record, sizeof(record), 0) == sizeof(record) &&
               isFresh(record);
    }

  private:
    void serve() const {
        const ModemState published = vantric_test::freshState();
        char request = 0;
        while (recv(sockets_.server(), &request, sizeof(request), 0) == sizeof(request)) {
            send(sockets_.server(), &published, sizeof(published), 0);
        }
    }

    SocketPair sockets_;
    ForkedProcess server_{[this] { serve(); }};
};

Repetition query() {
    auto state = std::make_shared<SocketState>();
    auto record = std::make_shared<ModemState>();
    return repeat([=] { return state->read(*record); });
}

Repetition enqueue() {
    auto sockets = std::make_shared<SocketPair>();
    const PeerMessage message;
    return repeatSending(
        [=] { return send(sockets->client(), &message, sizeof(message), 0) == sizeof(message); },
        [=] {
            return countReceived(message, [&](void* buffer, std::size_t size) {
                return recv(sockets->server(), buffer, size, MSG_DONTWAIT);
            });
        });
}

}  // namespace

Operations socketPeers() {
    return {
        {stateRow, peerRole, "Unix socket", query},
        {enqueueRow, peerRole, "Unix socket", enqueue},
    };
}

}  // namespace vantric_bench
