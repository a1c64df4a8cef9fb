#include "tests/support/Emulation.h"

#include <elf.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>

namespace vantric_test {

namespace {

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

// "/proc/self/exe" is the emulator to whoever executes it.
std::string executable(const std::string& program) {
    return std::filesystem::is_symlink(program) ? std::filesystem::read_symlink(program).string()
                                                : program;
}

}  // namespace

Command emulated(const Command& command) {
    std::istringstream text(TEST_EMULATOR);
    std::vector<std::string> words(std::istream_iterator<std::string>(text), {});
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

std::string withoutEmulatorsWords(const std::string& errors) {
    static const std::regex report("qemu: uncaught target signal [0-9]+ .*\n");
    return std::regex_replace(errors, report, "");
}

}  // namespace vantric_test
