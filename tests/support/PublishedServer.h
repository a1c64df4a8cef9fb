// The server's side of the shared memory, for tests of the client library: publishes records, takes
// commands out of the channel and, on demand, answers them from a thread of its own.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <functional>
#include <mutex>
#include <ostream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "Vantric/ClientServer/SharedMemoryModemState.h"
#include "Vantric/ModemState.h"

namespace vantric_test {

namespace Vantric = com_qel::Orvane::Vantric;

// A command as the server received it.
struct Frame {
    uint32_t command;
    std::string payload;

    friend bool operator==(const Frame& left, const Frame& right) {
        return left.command == right.command && left.payload == right.payload;
    }
    friend std::ostream& operator<<(std::ostream& stream, const Frame& frame) {
        return stream << frame.command << " <" << frame.payload << '>';
    }
};

using Frames = std::vector<Frame>;

// Fills a record's text field; a text of the field's size leaves no room for a NUL.
template <std::size_t size>
void setText(char (&field)[size], std::string_view text) {
    std::memset(field, 0, size);
    std::memcpy(field, text.data(), std::min(text.size(), size));
}

// Seconds since the epoch, of the clock that states are stamped with.
int32_t secondsNow();

// A state stamped with the current second, all of its fields set.
Vantric::ModemState freshState();

// An extended state with all of its fields set.
Vantric::ModemStateExtended someExtendedState(int32_t updateCounter);

// A list of networks with these signal levels, named after their index: "network 0" and so on.
Vantric::WifiInfosList wifiListOf(const std::vector<int32_t>& signalLevels, int32_t updateCounter);

// Attached to all four objects from construction to destruction. Construct clients first or while
// no thread answers: opening a lock releases it, even if another process holds it.
class PublishedServer {
  public:
    using Reaction = std::function<void(const Frame&)>;

    ~PublishedServer();
    PublishedServer& operator=(PublishedServer&&) = delete;

    Vantric::ClientServer::SharedMemoryModemState state;
    Vantric::ClientServer::SharedMemoryModemStateExtended extendedState;
    Vantric::ClientServer::SharedMemoryWifiList wifiList;

    // Publishes freshState() with that time stamp.
    void publishAt(int32_t timestamp);

    // Starts a thread that takes the commands out and calls `reaction` for each.
    void answer(Reaction reaction);

    // Stops answering; every command received so far, the unanswered ones included, in order.
    Frames takeFrames();

  private:
    bool takeFrame();
    void stop();

    Vantric::ClientServer::SharedMemoryModemCommands commands_{true};
    Frames frames_;
    Reaction reaction_;
    std::atomic<bool> isStopping_{false};
    std::thread thread_;
};

// Overwrites a segment's header; version 1 with valid 1 is what readers accept.
template <class Segment>
void setHeader(Segment& segment, uint32_t version, uint8_t valid) {
    const std::lock_guard<Vantric::ClientServer::MultiProcessLock> guard(segment.accessor().lock());
    segment.accessor().memory()->version = version;
    segment.accessor().memory()->valid = valid;
}

template <class Segment>
void invalidate(Segment& segment) {
    setHeader(segment, 1, 0);
}

// The names in /dev/shm, sorted.
std::vector<std::string> sharedMemoryNames();

// The counters that the objects keep of their users; the object must exist.
uint32_t attachCount(const std::string& name);
uint32_t attachedProducers();

}  // namespace vantric_test
