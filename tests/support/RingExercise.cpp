#include "tests/support/RingExercise.h"

#include <algorithm>

#include "tests/support/DequeueOutputs.h"

namespace vantric_test {

namespace {

constexpr const char* objectName = "ModemCommandsShm";
constexpr const char* commandsLock = "ModemCommandsShmLock";

}  // namespace

std::string RingExercise::perform(const RingOperation& operation) {
    std::string difference = change(operation);
    return difference.empty() ? compareObject() : difference;
}

std::string RingExercise::change(const RingOperation& operation) {
    using Kind = RingOperation::Kind;
    switch (operation.kind) {
        case Kind::AttachProducer:
            attach(producers_, false);
            return "";
        case Kind::AttachConsumer:
            attach(consumers_, true);
            return "";
        case Kind::DetachProducer:
            detach(producers_, operation, false);
            return "";
        case Kind::DetachConsumer:
            detach(consumers_, operation, true);
            return "";
        case Kind::Enqueue:
        case Kind::FillUp:
            return enqueue(operation);
        default:
            return dequeue(operation);
    }
}

void RingExercise::attach(Channels& channels, bool consumer) {
    if (channels.size() == mostPerRole) {
        return;
    }
    const bool isNew = !model_.exists();
    channels.push_back(std::make_unique<Channel>(consumer));
    consumer ? model_.attachConsumer() : model_.attachProducer();
    if (isNew) {
        segment_.emplace(objectName);
        lock_.emplace(commandsLock);
    }
}

void RingExercise::detach(Channels& channels, const RingOperation& operation, bool consumer) {
    if (channels.empty()) {
        return;
    }
    channels.erase(channels.begin() +
                   static_cast<std::ptrdiff_t>(operation.object % channels.size()));
    consumer ? model_.detachConsumer() : model_.detachProducer();
}

// One of those attached, preferably in the first role: either may do anything.
RingExercise::Channel* RingExercise::choose(Channels& first, Channels& second,
                                            const RingOperation& operation) {
    Channels& channels = first.empty() ? second : first;
    return channels.empty() ? nullptr : channels[operation.object % channels.size()].get();
}

std::string RingExercise::enqueue(const RingOperation& operation) {
    Channel* channel = choose(producers_, consumers_, operation);
    if (channel == nullptr) {
        return "";
    }
    const bool isFillUp = operation.kind == RingOperation::Kind::FillUp;
    const std::size_t free = std::max(model_.freeBytes(), RingModel::headerSize);
    const Bytes payload =
        repeated(operation.content, isFillUp ? free - RingModel::headerSize : operation.size);
    model_.enqueue(operation.command, payload);
    const bool isTrue =
        channel->enqueue(operation.command, payload.data(), static_cast<uint32_t>(payload.size()));
    return isTrue ? "" : "enqueue() returned false";
}

std::string RingExercise::dequeue(const RingOperation& operation) {
    Channel* channel = choose(consumers_, producers_, operation);
    if (channel == nullptr) {
        return "";
    }
    using Kind = RingOperation::Kind;
    const bool hasBuffer = operation.kind != Kind::DequeueWithoutBuffer;
    const bool hasSize = operation.kind != Kind::DequeueWithoutSize;
    DequeueOutputs outputs(operation.size);
    const bool isDequeued =
        channel->dequeue(outputs.command, hasBuffer ? outputs.buffer.get() : nullptr,
                         hasSize ? &outputs.size : nullptr);
    const auto frame =
        model_.dequeue(hasBuffer && hasSize ? std::optional(operation.size) : std::nullopt);
    if (isDequeued != frame.has_value()) {
        return isDequeued ? "dequeue() succeeded" : "dequeue() failed";
    }
    return outputs.hold(frame) ? "" : "dequeue() handed out something else";
}

std::string RingExercise::compareObject() {
    if (!model_.exists()) {
        segment_.reset();
        return segmentExists(objectName) ? "the object still exists" : "";
    }
    std::string difference = firstDifference(segment_->bytes(), model_.image());
    if (!difference.empty()) {
        return difference;
    }
    return lock_->value() == 1 ? "" : "the lock is not free";
}

}  // namespace vantric_test
