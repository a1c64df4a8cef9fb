// Runs the commands of a document's example on a stepped clock.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tests/docs/CommandExamples.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/transcripts/SteppedClock.h"

namespace vantric_test {

// While it lives, this process works in an empty folder beside which only `sim` of the source
// folder can be seen. Its private /dev/shm is emptied first.
class ExampleBench {
  public:
    explicit ExampleBench(const ExampleCircumstances& circumstances);
    ~ExampleBench();

    ExampleBench(const ExampleBench&) = delete;
    ExampleBench& operator=(const ExampleBench&) = delete;

    // What the command prints: settings of environment variables, then vantricprobe, vantricsim or
    // cat. Throws std::runtime_error for another program, a bad end, and anything on standard
    // error.
    std::string run(std::vector<std::string> words);

  private:
    using Process = std::unique_ptr<ChildProcess>;

    Process start(const Command& command, ClockParticipant participant);
    void startServer(const Command& command);
    void runUntilEndOf(const Process& process, std::chrono::nanoseconds time);
    std::string outputOf(const Process& process);
    std::string runClient(const Command& command);
    std::string runServer(const Command& command);

    const ExampleCircumstances circumstances_;
    const std::filesystem::path folderBefore_ = std::filesystem::current_path();
    TemporaryFolder folder_;
    SteppedClock clock_;
    Process server_;
};

}  // namespace vantric_test
