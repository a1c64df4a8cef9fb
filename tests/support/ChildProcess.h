// A real child process with captured output and bounded waits. A program of a build for another
// architecture runs in the emulator that the tests themselves run in.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantric_test {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds defaultPatience = 60s;

struct Command {
    std::string program;                               // path of the executable
    std::vector<std::string> arguments{};              // after argv[0]
    std::map<std::string, std::string> environment{};  // added to this process's own
    std::optional<std::string> commandName{};          // argv[0], when not the program's path
    std::optional<int> standardOutput{};               // a descriptor to use instead of capturing
    std::optional<int> standardError{};                // the same
    std::optional<int> standardInput{};                // a descriptor instead of /dev/null
    std::vector<bool (*)()> preparations{};  // the child's last steps before the program; each may
                                             // only make system calls, and false ends the child
};

// How a child ended.
struct ExitStatus {
    int raw;  // as from waitpid()

    // The exit code, or -1 for a child that a signal ended.
    int code() const;
    // The signal that ended the child, or 0.
    int signal() const;
};

// `command` as an argument of the tool that the environment's VANTRIC_TEST_LAUNCHER names (words
// with blanks between them), so that the tool watches it. Without the variable, `command` itself.
Command watched(Command command);

class ChildProcess {
  public:
    // Starts the child; its standard input is /dev/null. Throws std::runtime_error when that fails.
    explicit ChildProcess(const Command& command);

    // Kills (SIGKILL) and reaps a child that is still running.
    ~ChildProcess();
    ChildProcess& operator=(ChildProcess&&) = delete;

    pid_t pid() const { return pid_; }
    void sendSignal(int signal) const;

    // What the child has written so far.
    std::string output() const;
    std::string errors() const;

    // Waits until standard output contains `text`; false when patience or the child ends first.
    bool waitForOutput(std::string_view text, std::chrono::milliseconds patience = defaultPatience);

    // Waits for the end; empty when patience runs out first.
    std::optional<ExitStatus> wait(std::chrono::milliseconds patience = defaultPatience);

  private:
    pid_t pid_ = -1;
    int outputDescriptor_ = -1;
    int errorsDescriptor_ = -1;
    std::optional<ExitStatus> status_;
};

struct Result {
    ExitStatus status;
    std::string output;
    std::string errors;
};

// Runs a command to its end. Throws std::runtime_error when patience runs out first.
Result run(const Command& command, std::chrono::milliseconds patience = defaultPatience);

}  // namespace vantric_test
