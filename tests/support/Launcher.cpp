#include "tests/support/Launcher.h"

#include <cstdlib>
#include <iterator>
#include <sstream>

namespace vantric_test {

Command watched(Command command) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): tests have one thread here
    const char* launcher = std::getenv("VANTRIC_TEST_LAUNCHER");
    std::istringstream text(launcher != nullptr ? launcher : "");
    std::vector<std::string> words(std::istream_iterator<std::string>(text), {});
    if (words.empty()) {
        return command;
    }
    words.push_back(command.program);
    words.insert(words.end(), command.arguments.begin(), command.arguments.end());
    command.program = words.front();
    command.arguments.assign(words.begin() + 1, words.end());
    return command;
}

}  // namespace vantric_test
