#include "tests/docs/ExampleBench.h"

#include <csignal>
#include <fstream>
#include <iterator>
#include <regex>
#include <stdexcept>

#include "tests/docs/EmptySharedMemory.h"
#include "tests/support/Launcher.h"
#include "tests/support/LogSettings.h"

namespace vantric_test {

namespace {

// What a client loses whenever it frees a lock: clocks that stand still while programs compute make
// every duration zero, and a wait of five minutes end with the look that comes exactly then.
constexpr std::chrono::microseconds timeOfCall(2);

// Longer than any command of an example.
constexpr std::chrono::seconds longest(3600);

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("no file " + path);
    }
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// Without any log setting of whoever runs the test.
Command program(const char* path, const std::vector<std::string>& arguments) {
    forgetLogSettings();
    Command command;
    command.program = path;
    command.arguments = arguments;
    return command;
}

// Takes the settings in front of a command out of its words.
std::map<std::string, std::string> takeSettings(std::vector<std::string>& words) {
    static const std::regex form("([A-Z_]+)=(.*)");
    std::map<std::string, std::string> settings;
    std::smatch match;
    while (!words.empty() && std::regex_match(words.front(), match, form)) {
        settings[match[1]] = match[2];
        words.erase(words.begin());
    }
    return settings;
}

}  // namespace

ExampleBench::ExampleBench(const ExampleCircumstances& circumstances)
    : circumstances_(circumstances), clock_([] {}) {
    emptySharedMemory();
    std::filesystem::create_symlink(SOURCE_FOLDER "/sim", folder_.path() / "sim");
    std::filesystem::current_path(folder_.path());
    clock_.pauseAtUnlock(timeOfCall);
    if (circumstances_.scenario != "none") {
        startServer(
            program(VANTRICSIM_PATH, {"--scenario", SOURCE_FOLDER "/" + circumstances_.scenario}));
    }
}

ExampleBench::~ExampleBench() {
    std::error_code ignored;
    std::filesystem::current_path(folderBefore_, ignored);
}

std::string ExampleBench::run(std::vector<std::string> words) {
    const std::map<std::string, std::string> settings = takeSettings(words);
    if (words.empty()) {
        throw std::runtime_error("settings without a command");
    }
    const std::string name = words.front();
    const std::vector<std::string> arguments(words.begin() + 1, words.end());
    if (name == "cat") {
        return contentOf(arguments.at(0));
    }
    const bool isServer = name == "vantricsim";
    if (!isServer && name != "vantricprobe") {
        throw std::runtime_error("cannot run " + name);
    }
    Command command = program(isServer ? VANTRICSIM_PATH : VANTRICPROBE_PATH, arguments);
    command.commandName = name;
    command.environment = settings;
    return isServer ? runServer(command) : runClient(command);
}

ExampleBench::Process ExampleBench::start(const Command& command, ClockParticipant participant) {
    auto process = std::make_unique<ChildProcess>(clock_.with(watched(command), participant));
    clock_.admit(*process, participant);
    return process;
}

void ExampleBench::startServer(const Command& command) {
    server_ = start(command, clockServer);
    clock_.runUntil(clock_.now());
}

void ExampleBench::runUntilEndOf(const Process& process, std::chrono::nanoseconds time) {
    while (clock_.now() < time && !process->wait(0ms)) {
        clock_.runUntil(time);
    }
}

std::string ExampleBench::outputOf(const Process& process) {
    const auto status = process->wait(0ms);
    const bool isStopped = circumstances_.patience != std::chrono::seconds(0);
    const bool hasEndedWell =
        status && (status->code() == 0 || (isStopped && status->signal() == SIGTERM));
    if (!hasEndedWell || !process->errors().empty()) {
        throw std::runtime_error("ends badly or not at all, with the errors\n" + process->errors() +
                                 "and the output\n" + process->output());
    }
    return process->output();
}

std::string ExampleBench::runClient(const Command& command) {
    const Process client = start(command, clockClient);
    const bool isStopped = circumstances_.patience != std::chrono::seconds(0);
    runUntilEndOf(client, clock_.now() + (isStopped ? circumstances_.patience : longest));
    if (isStopped && !client->wait(0ms)) {
        client->sendSignal(SIGTERM);
        client->wait();
        clock_.dismiss(clockClient);
    }
    return outputOf(client);
}

// Together with the client that the example names.
std::string ExampleBench::runServer(const Command& command) {
    startServer(command);
    Process client;
    if (!circumstances_.client.empty()) {
        client = start(program(VANTRICPROBE_PATH, circumstances_.client), clockClient);
    }
    runUntilEndOf(server_, clock_.now() + longest);
    return outputOf(server_);
}

}  // namespace vantric_test
