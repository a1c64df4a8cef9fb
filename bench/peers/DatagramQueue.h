// Commands as Unix datagrams.
#pragma once

#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

#include "bench/peers/PeerMessage.h"

namespace vantric_bench {

class DatagramQueue {
  public:
    static constexpr int batchSize = 8;  // the system holds about ten

    DatagramQueue() {
        if (socketpair(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK, 0, ends_) != 0) {
            throw std::runtime_error("cannot make a socket");
        }
    }
    ~DatagramQueue() {
        close(ends_[0]);
        close(ends_[1]);
    }

    DatagramQueue(const DatagramQueue&) = delete;
    DatagramQueue& operator=(const DatagramQueue&) = delete;

    bool send() { return ::send(ends_[1], &message_, sizeof(message_), 0) == sizeof(message_); }

    int takeAll() {
        return countReceived(message_, [this](void* buffer, std::size_t size) {
            return recv(ends_[0], buffer, size, 0);
        });
    }

  private:
    PeerMessage message_;
    int ends_[2] = {-1, -1};
};

}  // namespace vantric_bench
