// Sending commands and following what becomes of them.
//
// A request only attaches to the ring and detaches again; the states are read elsewhere, without
// attaching. So a command opens two locks instead of eight, which matters because opening a lock
// releases it.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "ctl/Commands.h"
#include "ctl/Failure.h"
#include "ctl/SharedObjects.h"
#include "ctl/Wait.h"

namespace vantricctl {

using com_qel::Orvane::Vantric::ClientServer::ModemCommand;

class Request {
  public:
    // Throws Failure when no server takes commands, before anything is created or changed.
    explicit Request(uint32_t timeoutSeconds);
    ~Request();

    Request& operator=(Request&&) = delete;

    // Queues a command. Throws Failure when the ring has dropped it.
    void send(ModemCommand command, const std::string& payload = {});

    // Polls until all that was sent is taken and `isConfirmed`, or until the time is over. Returns
    // whether it is confirmed. Counts down on a terminal.
    bool follow(const std::function<bool()>& isConfirmed);

    // What is known of the request at the end of follow(): it is "queued" in the ring, "taken" by
    // the server, or "confirmed" by the state.
    const char* stage() const;

    // From the start to the end of follow().
    double seconds() const { return seconds_; }

    // Throws Failure unless the request is confirmed; `doubt` is the end of the sentence about one
    // that the server has taken.
    void requireConfirmed(const std::string& doubt = " but not confirmed it.") const;

  private:
    enum class Stage { Queued, Taken, Confirmed };

    bool isTaken();
    void showCountdown(int64_t secondsLeft);

    std::optional<com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands> commands_;
    const uint32_t timeoutSeconds_;
    const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    const Deadline deadline_;
    Stage stage_ = Stage::Queued;
    double seconds_ = 0;
    int64_t shownSeconds_ = 0;
    uint32_t lastReadIndex_ = 0;
    uint32_t bytesToTake_ = 0;  // up to the end of the last frame sent here
};

// A change that the state shows when the server has made it.
struct Change {
    ModemCommand command;
    std::string payload;
    std::function<bool(const ModemState&)> isShown;
};

// Whether the server publishes a state that `isShown` accepts.
bool stateShows(const std::function<bool(const ModemState&)>& isShown);

// Sends the request, waits until the state shows the change, and prints how long it took; when the
// time is over, prints which stage was reached and throws.
int carryOut(const Options& options, const Change& change);

// Requests a record and waits until its update counter has changed. `seconds` becomes the time
// from the request to the record.
template <class Record>
Record requestUpdate(ModemCommand command, uint32_t timeoutSeconds, double& seconds) {
    const int32_t before = publishedRecord<Record>().updateCounter;
    Request request(timeoutSeconds);
    request.send(command);
    Record record;
    request.follow([&] {
        const ObjectCopy copy = copyOf(objectOf<Record>);
        record = recordIn<Record>(copy);
        return copy.isPublished() && record.updateCounter != before;
    });
    request.requireConfirmed();
    seconds = request.seconds();
    return record;
}

// Throws Failure for wrong use unless `text` has 1 to `longest` bytes.
void requireLength(const char* what, const std::string& text, std::size_t longest);

}  // namespace vantricctl
