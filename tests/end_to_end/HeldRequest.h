// Full control over what a waiting command sees, without racing it.
//
// A command that waits for a change reads the state, sends its request and then looks for the
// change. The request needs the command channel's lock: holding that lock stops the command between
// its first reads and its first look.
#pragma once

#include <mutex>
#include <string>

#include "Vantric/Utils/MultiProcessLock.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/PublishedServer.h"

namespace vantric_test {

// A state that stays fresh, or is stale, at any speed of the command's clock.
Vantric::ModemState alwaysFresh(Vantric::ModemState state);
Vantric::ModemState stale(Vantric::ModemState state);

class HeldRequest {
  public:
    // Starts `command` on a stale state; once it has printed `firstFailure` and so is connected,
    // publishes `initial` and lets it go on until it has printed "Current ..." and is stopped.
    HeldRequest(PublishedServer& server, const Command& command, const std::string& firstFailure,
                const Vantric::ModemState& initial);

    // Lets the command send its request. Publish first what it is to see then.
    void release();

    // Waits until the command has printed `text` `count` times from "Current ..." on.
    bool waitForCount(const std::string& text, std::size_t count);

    ChildProcess& command() { return command_; }

    // Waits for the end and returns the output from "Current" on, with masked durations; how often
    // the command complained about the stale state before is a matter of timing.
    std::string transcript();

  private:
    Vantric::ClientServer::MultiProcessLock channelLock_{"ModemCommandsShmLock"};
    ChildProcess command_;
    std::unique_lock<Vantric::ClientServer::MultiProcessLock> hold_;
};

}  // namespace vantric_test
