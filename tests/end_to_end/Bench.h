// The real programs side by side: vantricprobe under test and vantricsim as its server.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace vantric_test {

// Long enough for every command here, a loaded machine included.
constexpr std::chrono::milliseconds commandPatience = 60s;

// A run of vantricprobe without any log setting of the user.
Command probe(const std::vector<std::string>& arguments);

// Runs a command that is expected to end with status 0 and an empty standard error.
Result runCleanly(const Command& command);

class Bench {
  public:
    // Starts a simulated server with a scenario (JSON) and waits until it is ready.
    explicit Bench(const std::string& scenario = "{}");

    ChildProcess& simulator() { return *simulator_; }

    // Every frame that was sent so far, as the server printed it: number, name, payload length and
    // quoted payload.
    std::vector<std::string> frames();

  private:
    TemporaryFolder folder_;
    std::unique_ptr<ChildProcess> simulator_;
    int markerCount_ = 0;
};

}  // namespace vantric_test
