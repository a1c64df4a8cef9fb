#include "tests/transcripts/TranscriptBench.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <map>
#include <regex>
#include <sstream>
#include <stdexcept>

#include "tests/support/Privileges.h"

namespace vantric_test {

namespace {

// Long enough for the server to take out what the client has left.
constexpr std::chrono::milliseconds afterglow(100);

std::string scenarioPath(const std::string& name) {
    const std::string folder = SOURCE_FOLDER;
    const std::string own = folder + "/tests/transcripts/scenarios/" + name;
    return std::filesystem::exists(own) ? own : folder + "/sim/scenarios/" + name;
}

Command simulator(const std::string& scenario) {
    return watched({VANTRICSIM_PATH, {"--scenario", scenarioPath(scenario)}});
}

const char* outputText(ClientOutput output) {
    static const std::map<ClientOutput, const char*> texts = {
        {ClientOutput::Terminal, "a terminal, as is standard error"},
        {ClientOutput::Closed, "closed from the start"},
        {ClientOutput::ReaderGone, "a pipe without a reader"},
        {ClientOutput::ReaderGoneUnsignalled, "a pipe without a reader, SIGPIPE ignored"},
        {ClientOutput::FullDevice, "/dev/full"}};
    return texts.at(output);
}

int openLostOutput(ClientOutput output) {
    if (output == ClientOutput::FullDevice) {
        return open("/dev/full", O_WRONLY | O_CLOEXEC);
    }
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        return -1;
    }
    close(ends[0]);
    return ends[1];
}

// The names of a list's lines in the order of the alphabet, the other bytes where they are.
void sortNetworkNames(std::vector<std::string>& writes) {
    static const std::regex line(R"((\t[0-9]+ - )([a-z]+)(, [\s\S]*))");
    std::vector<std::string> names;
    std::smatch match;
    for (const std::string& write : writes) {
        if (std::regex_match(write, match, line)) {
            names.push_back(match[2]);
        }
    }
    std::sort(names.begin(), names.end());
    auto name = names.begin();
    for (std::string& write : writes) {
        if (std::regex_match(write, match, line)) {
            write = match[1].str() + *name++ + match[3].str();
        }
    }
}

// Where in its file a record of the client library stems from may change at any time.
void hideSourceLines(std::vector<std::string>& writes) {
    static const std::regex number(R"((\| +ModemClientC?\|)[ 0-9]{4}[0-9]\|)");
    for (std::string& write : writes) {
        if (write.find("] <") != std::string::npos) {
            write = std::regex_replace(write, number, "$1 LINE|");
        }
    }
}

// The lines that a server printed after "ready", without their date.
std::string linesOf(const ChildProcess& server) {
    constexpr std::size_t dateLength = sizeof("2030-01-01 ") - 1;
    std::istringstream lines(server.output());
    std::string text;
    std::string line;
    std::getline(lines, line);
    while (std::getline(lines, line)) {
        text += line.substr(std::min(dateLength, line.size())) + "\n";
    }
    return text.empty() ? "nothing\n" : text;
}

}  // namespace

TranscriptBench::TranscriptBench(TranscriptCase row)
    : row_(std::move(row)),
      hindrance_(row_.circumstances.hindrance()),
      output_(row_.circumstances.output == ClientOutput::Terminal ? RecordedOutput::Kind::Terminal
                                                                  : RecordedOutput::Kind::Pipe),
      clock_([this] { output_.collect([this] { return clock_.now(); }); }) {}

std::string TranscriptBench::transcript() {
    const bool hasServer = !row_.circumstances.scenario.empty();
    if (hasServer) {
        startServer(row_.circumstances.scenario);
    }
    startClient();
    runClient();
    if (!hasServer) {
        startServer("default.json");
    }
    takeFramesOut();
    if (row_.circumstances.networksAreSorted) {
        output_.change(sortNetworkNames);
    }
    output_.change(hideSourceLines);
    return shortened(heading() + "\n" + output_.text() + ending() + "\n" + serversView());
}

void TranscriptBench::startServer(const std::string& scenario) {
    server_ = std::make_unique<ChildProcess>(clock_.with(simulator(scenario), clockServer));
    clock_.admit(*server_, clockServer);
    clock_.runUntil(clock_.now());
    if (server_->output().find("ready\n") == std::string::npos) {
        throw std::runtime_error("the simulated server does not get ready: " + server_->errors());
    }
}

void TranscriptBench::startClient() {
    // A client that aborts must not leave a core file.
    const rlimit noCore = {0, 0};
    setrlimit(RLIMIT_CORE, &noCore);

    Command command;
    command.program = row_.program;
    command.arguments = row_.arguments;
    command.environment["VRAX_LOG_LEVEL"] = row_.circumstances.logLevel;
    command.commandName = row_.commandName;
    command = watched(command);
    const ClientOutput output = row_.circumstances.output;
    command.standardOutput = output_.descriptor();
    int lostOutput = -1;
    if (output == ClientOutput::Terminal) {
        command.standardError = output_.descriptor();
    } else if (output == ClientOutput::Closed) {
        command.preparations.push_back([] { return close(STDOUT_FILENO) == 0; });
    } else if (output != ClientOutput::Read) {
        lostOutput = openLostOutput(output);
        command.standardOutput = lostOutput;
    }
    if (output == ClientOutput::ReaderGoneUnsignalled) {
        command.preparations.push_back([] { return std::signal(SIGPIPE, SIG_IGN) != SIG_ERR; });
    }
    if (hindrance_.needsObedientClient) {
        command.preparations.push_back(obeyFileModes);
    }
    client_ = std::make_unique<ChildProcess>(clock_.with(command, clockClient));
    output_.closeDescriptor();
    close(lostOutput);
    clock_.admit(*client_, clockClient);
}

void TranscriptBench::runClient() {
    if (hindrance_.description != nullptr) {
        runClientUntil(hindrance_.raisedAt);
        hindrance_.raise(*client_, clock_);
    }
    if (hindrance_.lift) {
        runClientUntil(hindrance_.liftedAt);
        hindrance_.lift(*client_, clock_);
    }
    runClientUntil(row_.circumstances.patience);
    if (!client_->wait(0ms)) {
        wasStopped_ = true;
        client_->sendSignal(SIGTERM);
        client_->wait();
        clock_.dismiss(clockClient);
        endTime_ = clock_.now();
    }
}

void TranscriptBench::runClientUntil(std::chrono::nanoseconds time) {
    while (clock_.now() < time && !client_->wait(0ms)) {
        clock_.runUntil(time);
        endTime_ = clock_.now();
    }
}

void TranscriptBench::takeFramesOut() {
    clock_.runUntil(clock_.now() + afterglow);
    const auto status = server_->wait(0ms);
    if (status && status->signal() == SIGKILL) {
        killedServersLines_ = linesOf(*server_) + "ended by SIGKILL\n";
        startServer("default.json");
        clock_.runUntil(clock_.now() + afterglow);
    } else if (status) {
        ADD_FAILURE() << "the server has ended: " << server_->errors();
    }
}

std::string TranscriptBench::heading() const {
    std::string text = "$ " + row_.commandName;
    for (const std::string& argument : row_.arguments) {
        text += " '" + escaped(argument) + "'";
    }
    const std::string& scenario = row_.circumstances.scenario;
    text += "\nserver: " + (scenario.empty() ? "none" : scenario) + "\n";
    if (hindrance_.description != nullptr) {
        text += std::string("hindrance: ") + hindrance_.description + "\n";
    }
    if (row_.circumstances.logLevel != std::string("fatal")) {
        text += std::string("log level: ") + row_.circumstances.logLevel + "\n";
    }
    if (row_.circumstances.output != ClientOutput::Read) {
        text += std::string("standard output: ") + outputText(row_.circumstances.output) + "\n";
    }
    return text;
}

std::string TranscriptBench::ending() const {
    const ExitStatus status = *client_->wait(0ms);
    const std::string how = status.signal() == 0
                                ? "status " + std::to_string(status.code())
                                : "SIG" + std::string(sigabbrev_np(status.signal()));
    std::string text =
        timeText(endTime_) + " ended by " + how + (wasStopped_ ? ", which the test sent\n" : "\n");
    std::istringstream errors(client_->errors());
    for (std::string line; std::getline(errors, line);) {
        text += "standard error: " + escaped(line) + "\n";
    }
    return text;
}

std::string TranscriptBench::serversView() const {
    constexpr const char* received = "The server received:\n";
    constexpr const char* foundLater = "A server that comes later finds:\n";
    if (!killedServersLines_.empty()) {
        return received + killedServersLines_ + "\n" + foundLater + linesOf(*server_);
    }
    return (row_.circumstances.scenario.empty() ? foundLater : received) + linesOf(*server_);
}

}  // namespace vantric_test
