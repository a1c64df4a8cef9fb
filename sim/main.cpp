// vantricsim: runs a simulated server until a signal, its time or its scenario ends it.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <exception>
#include <optional>
#include <string>
#include <thread>

#include "sim/CommandTable.h"
#include "sim/ScenarioFile.h"
#include "sim/SimulatedServer.h"

namespace {

using vantric_sim::Scenario;
using vantric_sim::SimulatedServer;

constexpr int success = 0;
constexpr int runtimeFailure = 1;
constexpr int usageFailure = 2;

constexpr double longestDuration = 1e9;  // seconds; keeps the arithmetic of clocks in range

// How late a signal or an event may be noticed when the ring is drained rarely.
constexpr std::chrono::milliseconds longestSleep(20);

struct Options {
    std::optional<std::string> scenarioFile;
    std::optional<double> duration;
    bool onlyCheck = false;
    bool listCommands = false;
};

volatile std::sig_atomic_t signalArrived = 0;

void noteSignal(int) {
    signalArrived = 1;
}

// Without SA_RESTART: a wait for a lock that a dead process holds ends with the signal.
void catchSignals() {
    struct sigaction action = {};
    action.sa_handler = noteSignal;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    // The reader of the lines may be gone while clients go on: keep serving them.
    action.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &action, nullptr);
}

void printLine(const std::string& line) {
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

void printCommands() {
    for (const vantric_sim::CommandDescription& row : vantric_sim::commandTable) {
        std::printf("%2u  %-33s payload: %s\n", static_cast<unsigned int>(row.command), row.name,
                    row.payload);
    }
}

void declare(CLI::App& app, Options& options) {
    app.set_version_flag("--version", "vantricsim " VANTRICSIM_VERSION);
    app.add_option("--scenario", options.scenarioFile,
                   "What to publish and what happens when: JSON, comments allowed")
        ->type_name("FILE");
    app.add_option("--duration", options.duration, "Stop after this time")->type_name("SECONDS");
    app.add_flag("--check", options.onlyCheck, "Read the scenario, report its faults, and stop");
    app.add_flag("--list-commands", options.listCommands, "Print the known commands, and stop");
    app.footer(
        "Prints the line 'ready' when everything is published, then one line for each command\n"
        "frame and each event. SIGINT and SIGTERM detach from the shared memory and end it.\n"
        "Exit status: 0 ended as asked, 1 the shared memory cannot be used, 2 bad option or file.");
}

void serve(const Scenario& scenario, const std::optional<double>& duration) {
    using Clock = std::chrono::steady_clock;
    catchSignals();
    SimulatedServer server(scenario, printLine);
    const Clock::time_point start = Clock::now();
    server.start(start);
    printLine("ready");

    const std::chrono::duration<double> allowed(duration.value_or(longestDuration));
    const auto pause = std::min(scenario.intervals.drain, longestSleep);
    while (signalArrived == 0 && Clock::now() - start < allowed && server.step(Clock::now())) {
        std::this_thread::sleep_for(pause);
    }
}

int fail(int status, const std::string& message) {
    std::fprintf(stderr, "vantricsim: %s\n", message.c_str());
    return status;
}

int runProgram(int argc, char** argv) {
    CLI::App app("Simulated modem-management server: publishes state and takes commands.",
                 "vantricsim");
    Options options;
    declare(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const bool isRequestForText = error.get_exit_code() == success;
        return isRequestForText
                   ? app.exit(error)
                   : fail(usageFailure, error.what() + std::string("\nTry 'vantricsim --help'."));
    }
    // Written so that what is no number fails as well.
    if (options.duration && !(*options.duration > 0.0 && *options.duration <= longestDuration)) {
        return fail(usageFailure, "--duration: expected seconds above 0 and up to 1000000000");
    }
    if (options.listCommands) {
        printCommands();
        return success;
    }
    Scenario scenario;
    if (options.scenarioFile) {
        try {
            scenario = vantric_sim::readScenarioFile(*options.scenarioFile);
        } catch (const vantric_sim::ScenarioError& error) {
            return fail(usageFailure, error.what());
        }
    }
    if (!options.onlyCheck) {
        serve(scenario, options.duration);
    }
    return success;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return runProgram(argc, argv);
    } catch (const std::exception& error) {
        return fail(runtimeFailure, error.what());
    }
}
