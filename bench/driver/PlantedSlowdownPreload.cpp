// Preloaded into the driver to see the gate fail: every unlock costs a system call, an allocation
// and some hundred instructions more.
#include <dlfcn.h>
#include <semaphore.h>
#include <unistd.h>

#include <cstdlib>

namespace {

constexpr int extraRounds = 100;

void waste() {
    static_cast<void>(getppid());
    auto* volatile memory = std::malloc(1);
    std::free(memory);
    for (volatile int round = 0; round < extraRounds; round = round + 1) {
    }
}

}  // namespace

extern "C" int sem_post(sem_t* semaphore) noexcept {
    static auto* const original = reinterpret_cast<int (*)(sem_t*)>(dlsym(RTLD_NEXT, "sem_post"));
    waste();
    return original(semaphore);
}
