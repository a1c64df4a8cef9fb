// Sending commands and following what becomes of them.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "ctl/Failure.h"
#include "ctl/Wait.h"

namespace vantricctl {

using com_qel::Orvane::Vantric::ClientServer::ModemCommand;

// What is known of the requests that were sent.
enum class Stage {
    Queued,     // in the ring
    Taken,      // the server took them out
    Confirmed,  // the state shows the effect
};

const char* stageName(Stage stage);

// The command channel, as a client that only attaches to the ring, and that detaches again.
//
// The states are read elsewhere, without attaching; so a command opens two locks instead of eight,
// which matters because opening a lock releases it.
class CommandChannel {
  public:
    // Throws Failure when no server takes commands, before anything is created or changed.
    explicit CommandChannel(uint32_t timeoutSeconds);

    // Queues a command. Throws Failure when the ring has dropped it.
    void send(ModemCommand command, const std::string& payload = {});

    // Whether the server has taken out all that was sent here. Poll it: between two calls the
    // server must not take out as much as the ring holds.
    bool isTaken();

  private:
    BlockingLimit limit_;
    std::optional<com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands> commands_;
    uint32_t lastReadIndex_ = 0;
    uint32_t bytesToTake_ = 0;  // up to the end of the last frame sent here
};

// Polls until all requests are taken and `isConfirmed`, or until the time of `wait` is over.
// Returns the stage that was reached.
Stage follow(CommandChannel& channel, Wait& wait, const std::function<bool()>& isConfirmed);

// The sentence for a request whose time is over.
Failure timeOver(Stage stage, const Wait& wait);

}  // namespace vantricctl
