// For coverage builds of a program: writes the counts when SIGTERM or SIGABRT ends the process,
// which otherwise only an orderly exit does. The process still ends by that signal.
#include <csignal>

// The compiler's runtime keeps its name for itself.
extern "C" void writeCounts() __asm__("__gcov_dump");

namespace {

void dumpAndDie(int signalNumber) {
    writeCounts();
    std::signal(signalNumber, SIG_DFL);
    std::raise(signalNumber);
}

struct Installation {
    Installation() noexcept {
        std::signal(SIGTERM, dumpAndDie);
        std::signal(SIGABRT, dumpAndDie);
    }
};

const Installation installation;

}  // namespace
