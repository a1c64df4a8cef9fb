// Succeeds when this system lets a test process have a /dev/shm of its own, and that one is empty.
#include <cstdio>
#include <filesystem>

#include "tests/support/PrivateSharedMemory.h"

int main() {
    vantric_test::enterPrivateSharedMemory();
    if (!std::filesystem::is_empty("/dev/shm")) {
        std::fprintf(stderr, "The private /dev/shm is not empty.\n");
        return 1;
    }
    return 0;
}
