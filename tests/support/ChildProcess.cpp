#include "tests/support/ChildProcess.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include "tests/support/Emulation.h"
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

std::vector<std::string> environmentWith(const std::map<std::string, std::string>& additions) {
    std::vector<std::string> result;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        if (additions.count(text.substr(0, text.find('='))) == 0) {
            result.push_back(text);
        }
    }
    for (const auto& [name, value] : additions) {
        result.push_back(std::string(name).append("=").append(value));
    }
    return result;
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

ChildProcess::ChildProcess(const Command& original)
    : outputDescriptor_(openCapture("output")), errorsDescriptor_(openCapture("errors")) {
    const Command command = emulated(original);
    std::vector<std::string> arguments = {command.commandName.value_or(command.program)};
    arguments.insert(arguments.end(), command.arguments.begin(), command.arguments.end());
    std::vector<std::string> environment = environmentWith(command.environment);
    const std::vector<char*> argumentPointers = pointersTo(arguments);
    const std::vector<char*> environmentPointers = pointersTo(environment);
    const int standardOutput = command.standardOutput.value_or(outputDescriptor_);

    pid_ = fork();
    if (pid_ == -1) {
        throw std::runtime_error("fork failed");
    }
    if (pid_ == 0) {
        // Nothing outlives a test binary that is killed.
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
        dup2(nothing, STDIN_FILENO);
        dup2(standardOutput, STDOUT_FILENO);
        dup2(errorsDescriptor_, STDERR_FILENO);
        execve(command.program.c_str(), argumentPointers.data(), environmentPointers.data());
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
    return contentOf(errorsDescriptor_);
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
    return {status, child.output(), child.errors()};
}

}  // namespace vantric_test
