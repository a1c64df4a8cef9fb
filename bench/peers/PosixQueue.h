// Commands through a POSIX message queue.
#pragma once

#include <fcntl.h>
#include <mqueue.h>

#include <stdexcept>

#include "bench/peers/PeerMessage.h"

namespace vantric_bench {

class PosixQueue {
  public:
    static constexpr int batchSize = 8;  // the system's usual limit is ten

    PosixQueue() {
        constexpr const char* name = "/vantric_bench_queue";
        mq_attr attributes = {};
        attributes.mq_maxmsg = batchSize;
        attributes.mq_msgsize = 256;
        mq_unlink(name);
        queue_ = mq_open(name, O_RDWR | O_CREAT | O_EXCL | O_NONBLOCK, 0600, &attributes);
        if (queue_ == -1) {
            throw std::runtime_error("cannot make a message queue");
        }
        mq_unlink(name);  // it lives on, nameless
    }
    ~PosixQueue() { mq_close(queue_); }

    PosixQueue(const PosixQueue&) = delete;
    PosixQueue& operator=(const PosixQueue&) = delete;

    bool send() {
        return mq_send(queue_, reinterpret_cast<const char*>(&message_), sizeof(message_), 0) == 0;
    }

    int takeAll() {
        return countReceived(message_, [this](char* buffer, std::size_t size) {
            return mq_receive(queue_, buffer, size, nullptr);
        });
    }

  private:
    PeerMessage message_;
    mqd_t queue_ = -1;
};

}  // namespace vantric_bench
