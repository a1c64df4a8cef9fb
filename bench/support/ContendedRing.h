// Several processes that queue commands and one that takes them out, counts them by sender and
// insists on their content and order.
#pragma once

#include <sched.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <memory>
#include <stdexcept>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "bench/support/Contenders.h"

namespace vantric_bench {

class ContendedRing {
  public:
    static constexpr int batchSize = 16;  // all senders' batches fit into the ring together
    static constexpr uint32_t command = 12;

    struct Payload {
        uint32_t sender;
        uint32_t number;
        uint64_t complement;  // of both, so that a torn frame shows
    };
    static_assert(sizeof(Payload) == 16);

    // `send(payload)` queues one frame; sender 0 is the calling process, which sends by itself.
    template <class Send>
    ContendedRing(int senders, Send send) {
        consumer_ = std::make_unique<Contenders>(1, [this](int) { takeOne(); });
        others_ = std::make_unique<Contenders>(senders - 1, [this, send](int number) {
            const auto sender = static_cast<uint32_t>(number);
            for (int index = 0; index < batchSize; ++index) {
                send(next(sender));
            }
            waitUntilReceived(sender);
        });
    }

    // The next frame of a sender, whose own process calls this.
    Payload next(uint32_t sender) {
        const uint32_t number = sent_[sender]++;
        return {sender, number, ~(uint64_t{sender} << 32 | number)};
    }

    // Returns the number of frames that the consumer has received from the sender.
    uint32_t waitUntilReceived(uint32_t sender) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (shared_->received[sender] != sent_[sender]) {
            if (shared_->hasFailed) {
                throw std::runtime_error("a frame arrived torn or out of order");
            }
            if (std::chrono::steady_clock::now() > deadline) {
                throw std::runtime_error("a frame was lost");
            }
            sched_yield();
        }
        return shared_->received[sender];
    }

    // Everybody's frames have arrived then; throws std::runtime_error otherwise.
    void stop() {
        others_->stop();
        consumer_->stop();
    }

  private:
    static constexpr int mostSenders = 8;

    struct Shared {
        std::atomic<uint32_t> received[mostSenders] = {};
        std::atomic<bool> hasFailed{false};
    };

    void takeOne() {
        Payload payload = {};
        uint32_t size = sizeof(payload);
        uint32_t received = 0;
        if (!channel_.dequeue(received, &payload, &size)) {
            sched_yield();
            return;
        }
        const bool isIntact =
            received == command && payload.sender < mostSenders &&
            payload.complement == ~(uint64_t{payload.sender} << 32 | payload.number) &&
            payload.number == shared_->received[payload.sender];
        if (!isIntact) {
            shared_->hasFailed = true;
            throw std::runtime_error("a frame arrived torn or out of order");
        }
        ++shared_->received[payload.sender];
    }

    SharedVariables<Shared> shared_;
    uint32_t sent_[mostSenders] = {};  // each process counts its own
    com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands channel_{true};
    std::unique_ptr<Contenders> consumer_;
    std::unique_ptr<Contenders> others_;
};

}  // namespace vantric_bench
