#include "tests/support/StoreWatch.h"

#include <sys/mman.h>
#include <ucontext.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <cstring>
#include <utility>

namespace vantric_test {

namespace {

struct Watched {
    unsigned char* begin = nullptr;
    std::size_t length = 0;
    std::function<void()> beforeStore;
};

Watched& watched() {
    static Watched pages;
    return pages;
}

unsigned char* pageOf(void* address) {
    const auto pageSize = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    return static_cast<unsigned char*>(address) -
           reinterpret_cast<std::uintptr_t>(address) % pageSize;
}

void protect(int protection) {
    mprotect(watched().begin, watched().length, protection);
}

#if defined(__x86_64__)

// The processor can stop after one instruction by itself.
constexpr greg_t trapFlag = 0x100;

void stopAfterOneInstruction(ucontext_t& context) {
    context.uc_mcontext.gregs[REG_EFL] |= trapFlag;
}

void continueNormally(ucontext_t& context) {
    context.uc_mcontext.gregs[REG_EFL] &= ~trapFlag;
}

#elif defined(__arm__)

// A store is no jump, so a breakpoint in place of the instruction after it stops in time.
unsigned char replacedCode[4];
unsigned char* breakpoint;

void writeCode(const void* code) {
    unsigned char* page = pageOf(breakpoint);
    const auto length = static_cast<std::size_t>(breakpoint - page) + sizeof(replacedCode);
    mprotect(page, length, PROT_READ | PROT_WRITE | PROT_EXEC);
    std::memcpy(breakpoint, code, sizeof(replacedCode));
    mprotect(page, length, PROT_READ | PROT_EXEC);
    __builtin___clear_cache(reinterpret_cast<char*>(breakpoint),
                            reinterpret_cast<char*>(breakpoint) + sizeof(replacedCode));
}

void stopAfterOneInstruction(ucontext_t& context) {
    constexpr unsigned long thumbState = 0x20;
    constexpr uint16_t firstWideThumb = 0xE800;
    const bool isThumb = (context.uc_mcontext.arm_cpsr & thumbState) != 0;
    auto* store = reinterpret_cast<unsigned char*>(context.uc_mcontext.arm_pc);
    uint16_t half = 0;
    std::memcpy(&half, store, sizeof(half));
    breakpoint = store + (isThumb && half < firstWideThumb ? 2 : 4);
    std::memcpy(replacedCode, breakpoint, sizeof(replacedCode));
    const uint16_t thumbBreakpoint[] = {0xBE00, 0xBE00};
    const uint32_t armBreakpoint = 0xE1200070;
    writeCode(isThumb ? static_cast<const void*>(thumbBreakpoint) : &armBreakpoint);
}

void continueNormally(ucontext_t&) {
    writeCode(replacedCode);
}

#else
#error "no way to stop after one instruction"
#endif

void onFault(int signal, siginfo_t* information, void* context) {
    const auto* address = static_cast<unsigned char*>(information->si_addr);
    if (address < watched().begin || address >= watched().begin + watched().length) {
        std::signal(signal, SIG_DFL);  // a fault of another kind: the instruction faults again
        return;
    }
    watched().beforeStore();
    protect(PROT_READ | PROT_WRITE);
    stopAfterOneInstruction(*static_cast<ucontext_t*>(context));
}

void onStep(int, siginfo_t*, void* context) {
    continueNormally(*static_cast<ucontext_t*>(context));
    protect(PROT_READ);
}

void handle(int signal, void (*handler)(int, siginfo_t*, void*)) {
    struct sigaction action = {};
    action.sa_sigaction = handler;
    action.sa_flags = SA_SIGINFO;
    sigaction(signal, &action, nullptr);
}

}  // namespace

StoreWatch::StoreWatch(void* address, std::size_t length, std::function<void()> beforeStore) {
    unsigned char* begin = pageOf(address);
    const auto before = static_cast<std::size_t>(static_cast<unsigned char*>(address) - begin);
    watched() = {begin, before + length, std::move(beforeStore)};
    handle(SIGSEGV, onFault);
    handle(SIGTRAP, onStep);
    protect(PROT_READ);
}

StoreWatch::~StoreWatch() {
    protect(PROT_READ | PROT_WRITE);
    std::signal(SIGSEGV, SIG_DFL);
    std::signal(SIGTRAP, SIG_DFL);
}

}  // namespace vantric_test
