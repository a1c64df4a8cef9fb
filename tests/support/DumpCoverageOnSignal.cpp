// For coverage builds of a program: writes the counts when SIGTERM or SIGABRT ends the process,
// which otherwise only an orderly exit does. The process still ends by that signal.
#include <csignal>

// The compiler's own runtime names it so.
// NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" void __gcov_dump();

namespace {

void dumpAndDie(int signalNumber) {
    __gcov_dump();
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
