// Commands through a message queue of Boost.Interprocess.
#pragma once

#include <boost/interprocess/ipc/message_queue.hpp>

#include "bench/peers/PeerMessage.h"

namespace vantric_bench {

class BoostQueue {
  public:
    static constexpr int batchSize = 32;

    bool send() { return queue_.try_send(&message_, sizeof(message_), 0); }

    int takeAll() {
        return countReceived(message_, [this](void* buffer, std::size_t size) {
            boost::interprocess::message_queue::size_type length = 0;
            unsigned int priority = 0;
            return queue_.try_receive(buffer, size, length, priority) ? static_cast<long>(length)
                                                                      : -1L;
        });
    }

  private:
    PeerMessage message_;
    boost::interprocess::message_queue queue_{boost::interprocess::create_only, "BoostQueue",
                                              batchSize, 256};
};

}  // namespace vantric_bench
