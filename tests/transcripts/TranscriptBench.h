// Runs a client against vantricsim on a stepped clock and writes down all that can be seen of
// it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/transcripts/RecordedOutput.h"
#include "tests/transcripts/SteppedClock.h"
#include "tests/transcripts/TranscriptCase.h"

namespace vantric_test {

class TranscriptBench {
  public:
    explicit TranscriptBench(TranscriptCase row);

    // Runs the case to its end; call once.
    std::string transcript();

  private:
    void startServer(const std::string& scenario);
    void startClient();
    void runClient();
    void runClientUntil(std::chrono::nanoseconds time);
    bool hasEnded() const;
    void takeFramesOut();

    std::string heading() const;
    std::string ending() const;
    std::string serversView() const;

    const TranscriptCase row_;
    const Hindrance hindrance_;
    RecordedOutput output_;
    SteppedClock clock_;
    std::unique_ptr<ChildProcess> server_;
    std::unique_ptr<ChildProcess> client_;
    std::string killedServersLines_;  // empty unless the scenario has killed the server
    bool wasStopped_ = false;
    std::chrono::nanoseconds endTime_{0};
};

}  // namespace vantric_test
