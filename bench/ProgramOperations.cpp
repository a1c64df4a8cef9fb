// A program's life from start to end.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Operation.h"

namespace vantric_bench {

namespace {

constexpr const char* programRow = "start to end";

bool runToItsEnd(std::vector<std::string> words) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    pid_t process = 0;
    const int error =
        posix_spawn(&process, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = -1;
    return error == 0 && waitpid(process, &status, 0) == process && status == 0;
}

Repetition repeatProgram(const std::vector<std::string>& words) {
    return repeat([=] { return runToItsEnd(words); });
}

Repetition help() {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): this program has one thread
    const char* program = std::getenv("VANTRICPROBE");
    if (program == nullptr) {
        throw std::runtime_error("the variable VANTRICPROBE must name the program to start");
    }
    return repeatProgram({program, "--help"});
}

}  // namespace

Operations programOperations() {
    return {
        {programRow, floorRole, "/bin/true", [] { return repeatProgram({"/bin/true"}); }},
        {programRow, productRole, "vantricprobe --help", help},
    };
}

}  // namespace vantric_bench
