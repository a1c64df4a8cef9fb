#include "tests/support/ChildProcess.h"

#include <elf.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <stdexcept>

#include "tests/support/Polling.h"

namespace vantric_test {

namespace {

constexpr int cannotExecuteStatus = 127;

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

std::map<std::string, std::string> ownEnvironment() {
    std::map<std::string, std::string> result;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        const std::size_t end = std::min(text.find('='), text.size() - 1);
        result[text.substr(0, end)] = text.substr(end + 1);
    }
    return result;
}

std::vector<std::string> wordsOf(const char* text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

constexpr const char* preloadVariable = "LD_PRELOAD";

#ifdef __arm__
constexpr Elf32_Half ownMachine = EM_ARM;
#else
constexpr Elf32_Half ownMachine = EM_X86_64;
#endif

bool isOfOwnArchitecture(const std::string& program) {
    Elf32_Ehdr header = {};  // as far as the machine, all headers are alike
    std::ifstream(program, std::ios::binary).read(reinterpret_cast<char*>(&header), sizeof(header));
    return std::memcmp(header.e_ident, ELFMAG, SELFMAG) == 0 && header.e_machine == ownMachine;
}

// "/proc/self/exe" would be the emulator itself.
std::string executable(const std::string& program) {
    return std::filesystem::is_symlink(program) ? std::filesystem::read_symlink(program).string()
                                                : program;
}

// `command` run by the emulator that the build was configured with, when there is one and the
// program is of the build's architecture (a shell, say, is this machine's own).
Command emulated(const Command& command) {
    const std::vector<std::string> words = wordsOf(TEST_EMULATOR);
    // A machine without the emulator needs none: it is of the build's architecture.
    if (words.empty() || access(words.front().c_str(), X_OK) != 0) {
        return command;
    }
    const std::string program = executable(command.program);
    if (!isOfOwnArchitecture(program)) {
        return command;
    }
    Command result = command;
    result.program = words.front();
    result.commandName.reset();
    result.arguments.assign(words.begin() + 1, words.end());
    result.arguments.insert(result.arguments.end(),
                            {"-0", command.commandName.value_or(command.program)});
    const auto preload = result.environment.find(preloadVariable);
    if (preload != result.environment.end()) {
        result.arguments.insert(result.arguments.end(),
                                {"-E", std::string(preloadVariable) + "=" + preload->second});
        result.environment.erase(preload);
    }
    result.arguments.push_back(program);
    result.arguments.insert(result.arguments.end(), command.arguments.begin(),
                            command.arguments.end());
    return result;
}

// Without the line that the emulator adds when a signal ends the program.
std::string withoutEmulatorsWords(const std::string& errors) {
    static const std::regex report("qemu: uncaught target signal [0-9]+ .*\n");
    return std::regex_replace(errors, report, "");
}

int openCapture(const char* name) {
    const int descriptor = memfd_create(name, MFD_CLOEXEC);
    if (descriptor == -1) {
        throw std::runtime_error("memfd_create failed");
    }
    return descriptor;
}

std::string contentOf(int descriptor) {
    std::string content;
    char block[4096];
    ssize_t count = 0;
    while ((count = pread(descriptor, block, sizeof(block), static_cast<off_t>(content.size()))) >
           0) {
        content.append(block, static_cast<std::size_t>(count));
    }
    return content;
}

}  // namespace

int ExitStatus::code() const {
    return WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
}

int ExitStatus::signal() const {
    return WIFSIGNALED(raw) ? WTERMSIG(raw) : 0;
}

Command watched(Command command) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): tests have one thread here
    const char* launcher = std::getenv("VANTRIC_TEST_LAUNCHER");
    std::vector<std::string> words = wordsOf(launcher != nullptr ? launcher : "");
    if (words.empty()) {
        return command;
    }
    words.push_back(command.program);
    words.insert(words.end(), command.arguments.begin(), command.arguments.end());
    command.program = words.front();
    command.arguments.assign(words.begin() + 1, words.end());
    return command;
}

ChildProcess::ChildProcess(const Command& command)
    : outputDescriptor_(openCapture("output")), errorsDescriptor_(openCapture("errors")) {
    Command complete = command;
    complete.environment.merge(ownEnvironment());
    complete = emulated(complete);
    std::vector<std::string> arguments = {complete.commandName.value_or(complete.program)};
    arguments.insert(arguments.end(), complete.arguments.begin(), complete.arguments.end());
    std::vector<std::string> environment;
    for (const auto& [name, value] : complete.environment) {
        environment.push_back(std::string(name).append("=").append(value));
    }
    const std::vector<char*> argumentPointers = pointersTo(arguments);
    const std::vector<char*> environmentPointers = pointersTo(environment);
    const int standardOutput = command.standardOutput.value_or(outputDescriptor_);
    const int standardError = command.standardError.value_or(errorsDescriptor_);

    pid_ = fork();
    if (pid_ == -1) {
        throw std::runtime_error("fork failed");
    }
    if (pid_ == 0) {
        const int standardInput =
            command.standardInput.value_or(open("/dev/null", O_RDONLY | O_CLOEXEC));
        // Nothing outlives a test binary that is killed.
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        dup2(standardInput, STDIN_FILENO);
        dup2(standardOutput, STDOUT_FILENO);
        dup2(standardError, STDERR_FILENO);
        for (const auto preparation : command.preparations) {
            if (!preparation()) {
                std::_Exit(cannotExecuteStatus);
            }
        }
        execve(complete.program.c_str(), argumentPointers.data(), environmentPointers.data());
        std::_Exit(cannotExecuteStatus);
    }
}

ChildProcess::~ChildProcess() {
    if (!wait(0ms)) {
        sendSignal(SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
    close(outputDescriptor_);
    close(errorsDescriptor_);
}

void ChildProcess::sendSignal(int signal) const {
    kill(pid_, signal);
}

std::string ChildProcess::output() const {
    return contentOf(outputDescriptor_);
}

std::string ChildProcess::errors() const {
    return withoutEmulatorsWords(contentOf(errorsDescriptor_));
}

bool ChildProcess::waitForOutput(std::string_view text, std::chrono::milliseconds patience) {
    const auto hasText = [&] { return output().find(text) != std::string::npos; };
    eventually([&] { return hasText() || wait(0ms).has_value(); }, patience);
    return hasText();
}

std::optional<ExitStatus> ChildProcess::wait(std::chrono::milliseconds patience) {
    eventually(
        [&] {
            int raw = 0;
            if (!status_ && waitpid(pid_, &raw, WNOHANG) == pid_) {
                status_ = ExitStatus{raw};
            }
            return status_.has_value();
        },
        patience);
    return status_;
}

Result run(const Command& command, std::chrono::milliseconds patience) {
    ChildProcess child(command);
    const std::optional<ExitStatus> status = child.wait(patience);
    if (!status) {
        throw std::runtime_error("still running after its output:\n" + child.output() +
                                 child.errors());
    }
    return {*status, child.output(), child.errors()};
}

}  // namespace vantric_test
