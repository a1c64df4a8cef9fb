// What the command families have in common: how a command runs against the client class, how it
// reads before and waits after a change, and how it reports times.
#pragma once

#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <initializer_list>
#include <string>

#include "Vantric/ModemClient.h"
#include "client/Output.h"

namespace vantricprobe {

using com_qel::Orvane::Vantric::ModemClient;
using WallClock = std::chrono::system_clock;

// How long a command waits for the list of networks.
constexpr uint32_t listTimeoutSeconds = 30;

// Sleeps in full, however many signals arrive.
void sleepFor(std::chrono::seconds duration);

// `duration` in whole units, truncated toward zero.
template <class Unit>
int64_t whole(WallClock::duration duration) {
    return std::chrono::duration_cast<Unit>(duration).count();
}

// The wall-clock time that `action` takes.
template <class Action>
WallClock::duration timeOf(Action action) {
    const WallClock::time_point before = WallClock::now();
    action();
    return WallClock::now() - before;
}

// Connects, retrying once a second without limit.
void connectWithRetry(ModemClient& client);

// Runs `body` with a connected client of its own. A std::exception ends the command, not the
// program: it is reported once the client is gone.
template <class Body>
void runCommand(Body body) {
    try {
        ModemClient client;
        connectWithRetry(client);
        body(client);
    } catch (const std::exception& exception) {
        writeLine("[Client] Exception: ", exception.what());
    }
}

// Calls `read` until it succeeds, every 3 seconds and without limit.
void readWithRetry(const std::function<bool()>& read, const char* failureText);

// A change that the server was asked for and that a command waits for.
struct AwaitedChange {
    std::function<bool()> read;     // queries the state; false when that fails
    std::function<bool()> reached;  // judges what a successful read found
    const char* readFailureText;
    std::string timeoutText;  // up to the time that was allocated
};

// Polls every 3 seconds for up to 5 minutes and prints a dot for each poll. Returns the time that
// passed, which includes the sleep after the last poll.
WallClock::duration waitForChange(const AwaitedChange& change);

struct Timing {
    const char* label;
    int64_t value;
    const char* unit;
};

// Writes the "Timings:" block.
void writeTimings(std::initializer_list<Timing> timings);

}  // namespace vantricprobe
