// The main() of every test binary: a private /dev/shm first, then the tests, or the one role that
// the command line names.
#include <gtest/gtest.h>

#include "tests/support/LeftoverRemoval.h"
#include "tests/support/PrivateSharedMemory.h"
#include "tests/support/Roles.h"

int main(int argc, char** argv) {
    int exitCode = 0;
    if (vantric_test::runRole(argc, argv, exitCode)) {
        return exitCode;
    }
    testing::InitGoogleTest(&argc, argv);
    if (!testing::GTEST_FLAG(list_tests)) {
        vantric_test::enterPrivateSharedMemory();
        vantric_test::removeLeftoversOfEachCase();
    }
    return RUN_ALL_TESTS();
}
