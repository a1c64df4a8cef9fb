// Preloaded into a program: counts its allocations and writes their number into the file that
// ALLOCATION_COUNT_FILE names when the program ends.
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace {

std::atomic<long> allocationCount{0};

// The function that this one stands in front of.
template <class Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

[[gnu::destructor]] void report() {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the program is ending
    const char* path = std::getenv("ALLOCATION_COUNT_FILE");
    const int descriptor = path != nullptr ? open(path, O_WRONLY | O_CREAT | O_TRUNC, 0600) : -1;
    if (descriptor != -1) {
        dprintf(descriptor, "%ld\n", allocationCount.load());
        close(descriptor);
    }
}

}  // namespace

extern "C" void* malloc(size_t size) {
    static auto* const original = next<void*(size_t)>("malloc");
    ++allocationCount;
    return original(size);
}

extern "C" void* calloc(size_t count, size_t size) {
    static auto* const original = next<void*(size_t, size_t)>("calloc");
    ++allocationCount;
    return original(count, size);
}

extern "C" void* realloc(void* memory, size_t size) {
    static auto* const original = next<void*(void*, size_t)>("realloc");
    ++allocationCount;
    return original(memory, size);
}

extern "C" void* aligned_alloc(size_t alignment, size_t size) {
    static auto* const original = next<void*(size_t, size_t)>("aligned_alloc");
    ++allocationCount;
    return original(alignment, size);
}

extern "C" int posix_memalign(void** memory, size_t alignment, size_t size) {
    static auto* const original = next<int(void**, size_t, size_t)>("posix_memalign");
    ++allocationCount;
    return original(memory, alignment, size);
}
