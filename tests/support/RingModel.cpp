#include "tests/support/RingModel.h"

namespace vantric_test {

void RingModel::attachProducer() {
    attach();
    if (producers_ == 0) {
        isSetUp_ = true;
        written_ = 0;
        unread_.clear();
        ++occurrences_.setUps;
    }
    ++producers_;
}

void RingModel::attachConsumer() {
    attach();
    ++consumers_;
}

void RingModel::detachProducer() {
    --producers_;
    detach();
}

void RingModel::detachConsumer() {
    --consumers_;
    detach();
}

// The first to come finds everything zero.
void RingModel::attach() {
    if (attached_ == 0) {
        isSetUp_ = false;
        unread_.clear();
        data_.assign(capacity, 0);
    }
    ++attached_;
}

void RingModel::detach() {
    --attached_;
    occurrences_.removals += attached_ == 0 ? 1 : 0;
}

void RingModel::enqueue(uint32_t command, const Bytes& payload) {
    Bytes frame;
    appendWord(frame, command);
    appendWord(frame, static_cast<uint32_t>(payload.size()));
    frame.insert(frame.end(), payload.begin(), payload.end());
    if (frame.size() > freeBytes()) {
        ++occurrences_.droppedFrames;
        return;
    }
    occurrences_.splitFrames += written_ % capacity + frame.size() > capacity ? 1 : 0;
    for (const unsigned char byte : frame) {
        data_[written_++ % capacity] = byte;
        unread_.push_back(byte);
    }
    occurrences_.filledRings += unread_.size() == capacity ? 1 : 0;
}

std::optional<RingModel::Frame> RingModel::dequeue(std::optional<std::size_t> bufferSize) {
    if (unread_.size() < headerSize) {
        occurrences_.partialHeaders += unread_.empty() ? 0 : 1;
        return std::nullopt;
    }
    const uint32_t command = takeWord();
    const uint32_t size = takeWord();
    const bool isFetchable = bufferSize && size <= *bufferSize && size <= unread_.size();
    if (size != 0 && !isFetchable) {
        ++occurrences_.lostHeaders;
        return std::nullopt;
    }
    const auto end = unread_.begin() + static_cast<std::ptrdiff_t>(size);
    const Bytes payload(unread_.begin(), end);
    unread_.erase(unread_.begin(), end);
    ++occurrences_.dequeuedFrames;
    return Frame{command, payload};
}

uint32_t RingModel::takeWord() {
    uint32_t word = 0;
    for (unsigned int shift = 0; shift < 32; shift += 8) {
        word |= uint32_t{unread_.front()} << shift;
        unread_.pop_front();
    }
    return word;
}

Bytes RingModel::image() const {
    const uint64_t read = written_ - unread_.size();
    Bytes image;
    appendWord(image, attached_);
    appendWord(image, isSetUp_ ? 1 : 0);
    appendWord(image, producers_);
    appendWord(image, consumers_);
    appendWord(image, isSetUp_ ? static_cast<uint32_t>(read % capacity) : 0);
    appendWord(image, isSetUp_ ? static_cast<uint32_t>(written_ % capacity) : 0);
    appendWord(image, isSetUp_ ? static_cast<uint32_t>(capacity) : 0);
    image.push_back(unread_.size() == capacity ? 1 : 0);
    image.push_back(isSetUp_ && unread_.empty() ? 1 : 0);
    image.insert(image.end(), data_.begin(), data_.end());
    image.insert(image.end(), {0, 0});
    return image;
}

}  // namespace vantric_test
