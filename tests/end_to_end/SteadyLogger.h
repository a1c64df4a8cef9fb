// vantricprobe writing one error record after the other, a few milliseconds apart, while the test
// changes what is around it: it asks for the host name again and again because the state is stale.
#pragma once

#include <cstddef>
#include <string>

#include "tests/end_to_end/LoggedRun.h"
#include "tests/support/PublishedServer.h"

namespace vantric_test {

// What the command prints behind every record.
constexpr const char* hostnameFailure = "Failed to get current HostName\n";

class SteadyLogger {
  public:
    // Waits for the first record.
    explicit SteadyLogger(const LogSettings& settings);

    // Waits until at least `count` records were written from their beginning on. Throws
    // std::runtime_error when the command ends or stalls instead.
    void awaitRecords(std::size_t count);

    // Stops the command, between two records in all likelihood, until resume().
    void pause();
    void resume();

    // Lets the command end; the number of its records.
    std::size_t finish();

    // Ends the command by SIGKILL.
    void kill();

    ChildProcess& command() { return command_; }

  private:
    std::size_t recordCount() const;

    PublishedServer server_;
    ChildProcess command_;
};

}  // namespace vantric_test
