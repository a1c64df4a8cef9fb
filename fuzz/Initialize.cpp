#include "fuzz/Target.h"
#include "tests/support/PrivateSharedMemory.h"

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    vantric_test::enterPrivateSharedMemory();
    return 0;
}
