#include "tests/end_to_end/SteadyLogger.h"

#include <gtest/gtest.h>

#include <csignal>
#include <stdexcept>

#include "tests/end_to_end/Bench.h"
#include "tests/end_to_end/HeldRequest.h"
#include "tests/end_to_end/Transcript.h"
#include "tests/support/Polling.h"
#include "tests/support/ProcessFacts.h"

namespace vantric_test {

namespace {

// Three seconds between two records become 15 milliseconds.
constexpr int clockFactor = 200;

Command askingInVain(PublishedServer& server, const LogSettings& settings) {
    server.state.publish(stale(freshState()));
    return withSettings(probe({"--setConfig", "a.cfg"}, clockFactor), settings);
}

}  // namespace

SteadyLogger::SteadyLogger(const LogSettings& settings)
    : command_(askingInVain(server_, settings)) {
    if (!command_.waitForOutput(hostnameFailure)) {
        throw std::runtime_error("the command writes no record: " + command_.output());
    }
}

void SteadyLogger::awaitRecords(std::size_t count) {
    // The record that is being written now does not count.
    const std::size_t goal = recordCount() + 1 + count;
    if (!eventually([&] { return recordCount() >= goal; }, commandPatience)) {
        throw std::runtime_error("the command writes no more records: " + command_.output());
    }
}

void SteadyLogger::pause() {
    command_.sendSignal(SIGSTOP);
    const std::string statusFile = "/proc/" + std::to_string(command_.pid()) + "/stat";
    if (!eventually([&] { return fileContent(statusFile).find(") T ") != std::string::npos; })) {
        throw std::runtime_error("the command does not stop");
    }
}

void SteadyLogger::resume() {
    command_.sendSignal(SIGCONT);
}

std::size_t SteadyLogger::finish() {
    server_.state.publish(alwaysFresh(freshState()));
    const auto status = command_.wait(commandPatience);
    EXPECT_TRUE(status && status->code() == 0);
    EXPECT_EQ(command_.errors(), "");
    return recordCount();
}

void SteadyLogger::kill() {
    command_.sendSignal(SIGKILL);
    const auto status = command_.wait(commandPatience);
    EXPECT_TRUE(status && status->signal() == SIGKILL);
}

std::size_t SteadyLogger::recordCount() const {
    return countOf(command_.output(), hostnameFailure);
}

}  // namespace vantric_test
