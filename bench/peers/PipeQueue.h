// Commands through a pipe.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <stdexcept>

#include "bench/peers/PeerMessage.h"

namespace vantric_bench {

class PipeQueue {
  public:
    static constexpr int batchSize = 32;

    PipeQueue() {
        if (pipe2(ends_, O_NONBLOCK) != 0) {
            throw std::runtime_error("cannot make a pipe");
        }
    }
    ~PipeQueue() {
        close(ends_[0]);
        close(ends_[1]);
    }

    PipeQueue(const PipeQueue&) = delete;
    PipeQueue& operator=(const PipeQueue&) = delete;

    bool send() { return write(ends_[1], &message_, sizeof(message_)) == sizeof(message_); }

    int takeAll() {
        return countReceived(message_, [this](void* buffer, std::size_t /*size*/) {
            return read(ends_[0], buffer, sizeof(message_));
        });
    }

  private:
    PeerMessage message_;
    int ends_[2] = {-1, -1};
};

}  // namespace vantric_bench
