#include "tests/end_to_end/Bench.h"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "tests/support/LogSettings.h"

namespace vantric_test {

namespace {

using namespace com_qel::Orvane::Vantric::ClientServer;

Command program(const std::string& path, const std::vector<std::string>& arguments) {
    forgetLogSettings();
    return watched({path, arguments});
}

}  // namespace

Command probe(const std::vector<std::string>& arguments) {
    return program(VANTRICPROBE_PATH, arguments);
}

Result runCleanly(const Command& command) {
    Result result = run(command, commandPatience);
    EXPECT_EQ(result.status.code(), 0) << "signal " << result.status.signal();
    EXPECT_EQ(result.errors, "");
    return result;
}

Bench::Bench(const std::string& scenario) {
    const std::string file = folder_.write("scenario.json", scenario);
    simulator_ = std::make_unique<ChildProcess>(program(VANTRICSIM_PATH, {"--scenario", file}));
    if (!simulator_->waitForOutput("ready\n")) {
        throw std::runtime_error("the simulated server does not get ready: " +
                                 simulator_->errors());
    }
}

std::vector<std::string> Bench::frames() {
    // A frame of our own after all others tells when the server has printed them.
    const std::string marker = "marker " + std::to_string(++markerCount_);
    {
        constexpr bool asProducer = false;
        SharedMemoryModemCommands commands(asProducer);
        commands.enqueue(static_cast<uint32_t>(ModemCommand::SendText), marker.data(),
                         static_cast<uint32_t>(marker.size()));
    }
    if (!simulator_->waitForOutput("\"" + marker + "\"\n")) {
        ADD_FAILURE() << "the server does not take frames out";
    }

    constexpr const char* label = " frame ";
    std::vector<std::string> frames;
    std::istringstream lines(simulator_->output());
    for (std::string line; std::getline(lines, line);) {
        const std::size_t start = line.find(label);
        if (start != std::string::npos && line.find("\"marker ") == std::string::npos) {
            frames.push_back(line.substr(start + std::string(label).size()));
        }
    }
    return frames;
}

}  // namespace vantric_test
