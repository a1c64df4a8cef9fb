#include "ctl/Request.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "ctl/Output.h"
#include "ctl/Ring.h"

namespace vantricctl {

namespace {

using std::chrono::steady_clock;

constexpr unsigned int lockPatienceSeconds = 2;

}  // namespace

Request::Request(uint32_t timeoutSeconds)
    : timeoutSeconds_(timeoutSeconds), deadline_(timeoutSeconds) {
    // Attaching would create a missing object and resize one of another size.
    const ObjectCopy ring = publishedCopyOf(objectOf<RingMemory>);
    if (recordIn<RingMemory>(ring).consumers == 0) {
        throw Failure(statusNoServer, "No server takes commands out of " + ring.file.name + ".");
    }
    limitBlocking(timeoutSeconds + lockPatienceSeconds);
    constexpr bool asConsumer = false;
    commands_.emplace(asConsumer);
}

Request::~Request() {
    showCountdown(0);
    commands_.reset();
    limitBlocking(0);
}

void Request::send(ModemCommand command, const std::string& payload) {
    const auto size = static_cast<uint32_t>(payload.size());
    const uint32_t frameSize = frameHeaderSize + size;
    const Ring before = readRing();
    if (!before.isPossible() || before.freeBytes() < frameSize) {
        throw Failure(statusFailed, before.isPossible()
                                        ? "The ring of commands is full: nothing was sent."
                                        : "The ring of commands is unusable: nothing was sent.");
    }
    commands_->enqueue(static_cast<uint32_t>(command), payload.data(), size);
    const Ring after = readRing();
    if (after.memory.writeIndex == before.memory.writeIndex && frameSize != ringCapacity) {
        throw Failure(statusFailed, "The ring of commands was full: it dropped the request.");
    }
    // Frames of others that came meanwhile only make the wait longer.
    lastReadIndex_ = after.memory.readIndex;
    bytesToTake_ = after.usedBytes();
}

// Whether the server has taken out all that was sent here. Between two calls it must not take out
// as much as the ring holds.
bool Request::isTaken() {
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

bool Request::follow(const std::function<bool()>& isConfirmed) {
    using std::chrono::milliseconds;
    stage_ = Stage::Queued;
    do {
        if (stage_ == Stage::Queued && isTaken()) {
            stage_ = Stage::Taken;
        }
        if (stage_ == Stage::Taken && isConfirmed()) {
            stage_ = Stage::Confirmed;
        }
        const auto elapsed = std::chrono::duration_cast<milliseconds>(steady_clock::now() - start_);
        seconds_ = static_cast<double>(elapsed.count()) / 1000;
        showCountdown(std::max<int64_t>(timeoutSeconds_ - static_cast<int64_t>(seconds_), 0));
    } while (stage_ != Stage::Confirmed && waitForPoll(deadline_));
    showCountdown(0);
    return stage_ == Stage::Confirmed;
}

// On a line of the terminal, which is empty again when nothing is left.
void Request::showCountdown(int64_t secondsLeft) {
    if (secondsLeft != shownSeconds_ && isatty(STDERR_FILENO) == 1) {
        const std::string text = std::to_string(secondsLeft) + " s left";
        std::fprintf(stderr, "\r\033[K%s", secondsLeft == 0 ? "" : text.c_str());
        shownSeconds_ = secondsLeft;
    }
}

const char* Request::stage() const {
    static constexpr const char* names[] = {"queued", "taken", "confirmed"};
    return names[static_cast<std::size_t>(stage_)];
}

void Request::requireConfirmed(const std::string& doubt) const {
    if (stage_ != Stage::Confirmed) {
        char time[32];
        std::snprintf(time, sizeof(time), "%.1f s: ", seconds_);
        throw Failure(statusTimeOver,
                      "The time is over after " + std::string(time) +
                          (stage_ == Stage::Queued
                               ? "the request is still queued, the server has not taken it out."
                               : "the server has taken the request" + doubt));
    }
}

bool stateShows(const std::function<bool(const ModemState&)>& isShown) {
    const ObjectCopy state = copyOf(objectOf<ModemState>);
    return state.isPublished() && isShown(recordIn<ModemState>(state));
}

int carryOut(const Options& options, const Change& change) {
    const bool wasShown = change.isShown(publishedRecord<ModemState>());
    Request request(options.timeoutSeconds);
    request.send(change.command, change.payload);
    request.follow([&] { return stateShows(change.isShown); });
    writeReport(
        {{"stage", request.stage()}, {"shownBefore", wasShown}, {"seconds", request.seconds()}},
        options.asJson);
    request.requireConfirmed();
    return statusDone;
}

void requireLength(const char* what, const std::string& text, std::size_t longest) {
    if (text.empty() || text.size() > longest) {
        throw Failure(statusWrongUse, std::string(what) + " must have 1 to " +
                                          std::to_string(longest) + " bytes, not " +
                                          std::to_string(text.size()) + ".");
    }
}

}  // namespace vantricctl
