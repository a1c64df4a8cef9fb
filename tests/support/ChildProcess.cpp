#include "tests/support/ChildProcess.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
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

std::map<std::string, std::string> ownEnvironment() {
    std::map<std::string, std::string> result;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        const std::size_t end = std::min(text.find('='), text.size() - 1);
        result[text.substr(0, end)] = text.substr(end + 1);
    }
    return result;
}

// What execve() takes.
class Execution {
  public:
    // Nothing is added to the command's environment.
    explicit Execution(const Command& command)
        : program_(command.program), arguments_{command.commandName.value_or(command.program)} {
        arguments_.insert(arguments_.end(), command.arguments.begin(), command.arguments.end());
        for (const auto& [name, value] : command.environment) {
            environment_.push_back(std::string(name).append("=").append(value));
        }
        argumentPointers_ = pointersTo(arguments_);
        environmentPointers_ = pointersTo(environment_);
    }

    Execution(const Execution&) = delete;
    Execution& operator=(const Execution&) = delete;

    // Returns when that is impossible only.
    void perform() const {
        execve(program_.c_str(), argumentPointers_.data(), environmentPointers_.data());
    }

  private:
    std::string program_;
    std::vector<std::string> arguments_;
    std::vector<std::string> environment_;
    std::vector<char*> argumentPointers_;
    std::vector<char*> environmentPointers_;
};

Execution executionOf(Command command) {
    command.environment.merge(ownEnvironment());
    return Execution(emulated(command));
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

void replaceThisProcess(const Command& command) {
    executionOf(command).perform();
}

ChildProcess::ChildProcess(const Command& command)
    : outputDescriptor_(openCapture("output")), errorsDescriptor_(openCapture("errors")) {
    const Execution execution = executionOf(command);
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
        execution.perform();
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
    return {status, child.output(), child.errors()};
}

}  // namespace vantric_test
