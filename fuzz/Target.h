// What every fuzz target consists of: the entry that the fuzzer and the replay program call for
// each input, and the check that turns a broken promise into a crash.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

// Called once, before the first input: gives the process a /dev/shm of its own.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);

// Always 0; ends the process when the input breaks a promise. Keeps no state that could make the
// next input behave differently.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size);

namespace vantric_fuzz {

inline void require(bool holds, const std::string& promise) {
    if (!holds) {
        std::fprintf(stderr, "Broken promise: %s\n", promise.c_str());
        std::abort();
    }
}

}  // namespace vantric_fuzz
