// The real command channel and its model, side by side: every operation is done to both, and then
// everything that can be seen of the two is compared.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "tests/support/RawSemaphore.h"
#include "tests/support/RingModel.h"

namespace vantric_test {

struct RingOperation {
    enum class Kind {
        AttachProducer,
        AttachConsumer,
        DetachProducer,
        DetachConsumer,
        Enqueue,
        FillUp,  // enqueue whatever fits exactly
        Dequeue,
        DequeueWithoutBuffer,
        DequeueWithoutSize,
    };
    static constexpr std::size_t kindCount = 9;

    Kind kind = Kind::Dequeue;
    std::size_t object = 0;  // which of those attached in the role
    uint32_t command = 0;
    std::size_t size = 0;  // of the payload or of the buffer
    Bytes content;         // repeated until it is as long as the payload; zeros without any
};

class RingExercise {
  public:
    static constexpr std::size_t mostPerRole = 3;

    // What differs afterwards; empty when nothing does. An operation that needs an attached object
    // is skipped when there is none, and so is one attachment too many.
    std::string perform(const RingOperation& operation);

    const RingModel& model() const { return model_; }

  private:
    using Channel = com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands;
    using Channels = std::vector<std::unique_ptr<Channel>>;

    std::string change(const RingOperation& operation);
    std::string enqueue(const RingOperation& operation);
    std::string dequeue(const RingOperation& operation);
    std::string compareObject();
    void attach(Channels& channels, bool consumer);
    void detach(Channels& channels, const RingOperation& operation, bool consumer);
    Channel* choose(Channels& first, Channels& second, const RingOperation& operation);

    RingModel model_;
    Channels producers_;
    Channels consumers_;
    std::optional<RawSegment> segment_;
    std::optional<RawSemaphore> lock_;  // outlives the object
};

}  // namespace vantric_test
