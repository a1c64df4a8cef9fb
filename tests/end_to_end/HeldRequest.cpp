#include "tests/end_to_end/HeldRequest.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/end_to_end/Bench.h"
#include "tests/end_to_end/Transcript.h"
#include "tests/support/Polling.h"

namespace vantric_test {

namespace {

constexpr const char* firstLineBehindReads = "Current ";

// The command must not find a state that it could go on with.
const Command& onStaleState(const Command& command, PublishedServer& server,
                            const Vantric::ModemState& initial) {
    server.state.publish(stale(initial));
    return command;
}

}  // namespace

Vantric::ModemState alwaysFresh(Vantric::ModemState state) {
    constexpr int32_t farAhead = 10'000'000;
    state.timestamp = secondsNow() + farAhead;
    return state;
}

Vantric::ModemState stale(Vantric::ModemState state) {
    constexpr int32_t longAgo = 1'000;
    state.timestamp = secondsNow() - longAgo;
    return state;
}

HeldRequest::HeldRequest(PublishedServer& server, const Command& command,
                         const std::string& firstFailure, const Vantric::ModemState& initial)
    : command_(onStaleState(command, server, initial)) {
    if (!command_.waitForOutput(firstFailure + "\n")) {
        throw std::runtime_error("the command does not start: " + command_.output());
    }
    hold_ = std::unique_lock(channelLock_);
    server.state.publish(alwaysFresh(initial));
    if (!command_.waitForOutput(firstLineBehindReads)) {
        throw std::runtime_error("the command does not go on: " + command_.output());
    }
}

void HeldRequest::release() {
    hold_.unlock();
}

bool HeldRequest::waitForCount(const std::string& text, std::size_t count) {
    const auto currentCount = [&] {
        return countOf(startingAt(command_.output(), firstLineBehindReads), text);
    };
    eventually([&] { return currentCount() >= count; }, commandPatience);
    return currentCount() == count;
}

std::string HeldRequest::transcript() {
    const auto status = command_.wait(commandPatience);
    EXPECT_TRUE(status && status->code() == 0);
    EXPECT_EQ(command_.errors(), "");
    return startingAt(masked(command_.output()), firstLineBehindReads);
}

}  // namespace vantric_test
