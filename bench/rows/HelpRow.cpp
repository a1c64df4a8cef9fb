// A program's life from start to end.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "bench/support/Measurement.h"

namespace vantric_bench {

namespace {

// A program of this build, by its path from the folder of the running one.
std::string builtProgram(const char* path) {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path() / path;
}

// The release's program, which scripts/bench.sh names, or else the one of this build.
std::string productProgram() {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): this program has one thread
    const char* named = std::getenv("VANTRIC_BENCH_PROGRAM");
    return named != nullptr ? named : builtProgram("../bin/vantricprobe");
}

// An empty argument is left out.
bool runToItsEnd(const std::string& program, const std::string& argument) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    std::string name = program;
    std::string option = argument;
    char* arguments[] = {name.data(), argument.empty() ? nullptr : option.data(), nullptr};
    pid_t process = 0;
    const int error = posix_spawn(&process, program.c_str(), &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = -1;
    return error == 0 && waitpid(process, &status, 0) == process && status == 0;
}

void addProgram(const char* role, const char* what, const std::string& program,
                const std::string& argument = {}) {
    addMeasurement("start to end", role, what, [=](benchmark::State& state) {
        auto run = [&] { return runToItsEnd(program, argument); };
        return Batch{1, timeTogether(state, 1, run)};
    });
}

}  // namespace

void registerRows() {
    addProgram(floorRole, "/bin/true", "/bin/true");
    addProgram(productRole, "vantricprobe --help", productProgram(), "--help");
    addProgram(peerRole, "a program that prints one line through std::cout",
               builtProgram("stream_program"));
}

}  // namespace vantric_bench
