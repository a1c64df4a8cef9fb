// A server for the kill storm: publishes and takes commands at full speed, and can be held up where
// it holds no lock.
#pragma once

#include <sys/types.h>

#include <atomic>
#include <cstdint>

#include "tests/soak/ExchangeNames.h"
#include "tests/soak/Supervision.h"

namespace vantric_soak {

struct ServerArea {
    std::atomic<bool> isAttached{false};
    std::atomic<uint32_t> request{1};  // odd to be held up, even to go on
    std::atomic<uint32_t> answered{0};
    std::atomic<bool> isOver{false};
    std::atomic<bool> isWaiting{false};  // for a lock
    std::atomic<uint32_t> sequence{0};   // of the records published last
    std::atomic<uint64_t> frames{0};
    std::atomic<uint64_t> foreignFrames{0};  // that no client has sent as they are
    std::atomic<uint32_t> lastMarker{0};     // number of the marker command received last
};

// The text of a marker command.
std::string markerText(uint32_t number);

// Runs the server in this process until it is over.
void runStormServer(ServerArea& area);

// Lets the server go on, or holds it up. Held up, it holds no lock; false when instead it sleeps in
// the wait for a lock that a dead client has left taken.
void letGoOn(ServerArea& area);
bool holdUp(ServerArea& area, pid_t server, Supervision& supervision);

}  // namespace vantric_soak
