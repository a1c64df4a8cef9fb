#include "ctl/Request.h"

#include "ctl/Output.h"
#include "ctl/Ring.h"
#include "ctl/ServerState.h"

namespace vantricctl {

namespace {

constexpr unsigned int lockPatienceSeconds = 2;

Ring readRing() {
    return decodeRing(readConsistently(ringName, ringObjectSize));
}

// Attaching would create a missing object and resize one of another size.
void requireRing() {
    const SharedFile file = readConsistently(ringName, ringObjectSize);
    if (!file.exists() || (file.error == 0 && decodeRing(file).memory.consumers == 0)) {
        throw Failure(statusNoServer, "No server takes commands out of " + file.name + ".");
    }
    if (file.error != 0) {
        throw Failure(statusFailed, unreadableSentence(file));
    }
    if (file.size != ringObjectSize) {
        throw Failure(statusUnusableState, wrongSizeSentence(file, ringObjectSize));
    }
}

}  // namespace

const char* stageName(Stage stage) {
    static constexpr const char* names[] = {"queued", "taken", "confirmed"};
    return names[static_cast<std::size_t>(stage)];
}

CommandChannel::CommandChannel(uint32_t timeoutSeconds)
    : limit_(timeoutSeconds + lockPatienceSeconds) {
    requireRing();
    constexpr bool asConsumer = false;
    commands_.emplace(asConsumer);
}

void CommandChannel::send(ModemCommand command, const std::string& payload) {
    const auto frameSize = frameHeaderSize + static_cast<uint32_t>(payload.size());
    const Ring before = readRing();
    if (!before.isPossible() || before.freeBytes() < frameSize) {
        throw Failure(statusFailed, before.isPossible()
                                        ? "The ring of commands is full: nothing was sent."
                                        : "The ring of commands is unusable: nothing was sent.");
    }
    commands_->enqueue(static_cast<uint32_t>(command), payload.data(),
                       static_cast<uint32_t>(payload.size()));
    const Ring after = readRing();
    if (after.memory.writeIndex == before.memory.writeIndex && frameSize != ringCapacity) {
        throw Failure(statusFailed, "The ring of commands was full: it dropped the request.");
    }
    // Frames of others that came meanwhile only make the wait longer.
    lastReadIndex_ = after.memory.readIndex;
    bytesToTake_ = after.usedBytes();
}

bool CommandChannel::isTaken() {
    if (bytesToTake_ == 0) {
        return true;
    }
    const Ring ring = readRing();
    const uint32_t taken = (ring.memory.readIndex - lastReadIndex_) % ringCapacity;
    lastReadIndex_ = ring.memory.readIndex;
    const bool isEmpty = ring.isPossible() && ring.usedBytes() == 0;
    bytesToTake_ = isEmpty || taken >= bytesToTake_ ? 0 : bytesToTake_ - taken;
    return bytesToTake_ == 0;
}

Stage follow(CommandChannel& channel, Wait& wait, const std::function<bool()>& isConfirmed) {
    Stage stage = Stage::Queued;
    do {
        if (stage == Stage::Queued && channel.isTaken()) {
            stage = Stage::Taken;
        }
        if (stage == Stage::Taken && isConfirmed()) {
            return Stage::Confirmed;
        }
    } while (wait.next());
    return stage;
}

Failure timeOver(Stage stage, const Wait& wait) {
    const std::string time = "The time is over after " + secondsText(wait.seconds()) + ": ";
    return Failure(statusTimeOver,
                   time + (stage == Stage::Queued
                               ? "the request is still queued, the server has not taken it out."
                               : "the server has taken the request but not confirmed it."));
}

}  // namespace vantricctl
