// The real programs side by side: vantricprobe under test and vantricsim as its server.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace vantric_test {

// How fast time passes for a program: 1 is the real clock. Every process starts at the real time.
constexpr int realTime = 1;

// For waits of minutes.
constexpr int minutesInSeconds = 50;

// Long enough for every command here, a loaded machine included.
constexpr std::chrono::milliseconds commandPatience = 60s;

// A run of vantricprobe with the clock's speed and without any log setting of the user.
Command probe(const std::vector<std::string>& arguments, int clockFactor = realTime);

// Runs a command that is expected to end with status 0 and an empty standard error.
Result runCleanly(const Command& command);

// The same, its output with masked durations.
std::string transcript(const Command& command);

class Bench {
  public:
    // Starts a simulated server with a scenario (JSON) and waits until it is ready; the clock of
    // all programs on the bench runs at `clockFactor`.
    explicit Bench(const std::string& scenario = "{}", int clockFactor = realTime);

    Command probe(const std::vector<std::string>& arguments) const;
    Result run(const std::vector<std::string>& arguments) const;
    std::string transcript(const std::vector<std::string>& arguments) const;

    ChildProcess& simulator() { return *simulator_; }

    // Every frame that was sent so far, as the server printed it: number, name, payload length and
    // quoted payload.
    std::vector<std::string> frames();

  private:
    const int clockFactor_;
    TemporaryFolder folder_;
    std::unique_ptr<ChildProcess> simulator_;
    int markerCount_ = 0;
};

}  // namespace vantric_test
