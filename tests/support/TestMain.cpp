// The main() of every test binary: a private /dev/shm first, then the tests, or the one role that
// the command line names.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "tests/support/PrivateSharedMemory.h"
#include "tests/support/Roles.h"

namespace {

using Paths = std::set<std::filesystem::path>;

Paths sharedMemoryEntries() {
    Paths paths;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/shm")) {
        paths.insert(entry.path());
    }
    return paths;
}

// Removes the objects that a case leaves in the private /dev/shm, as semaphores always are,
// so that the cases of a binary can run one after the other in one process.
class LeftoverRemoval : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override { before_ = sharedMemoryEntries(); }

    void OnTestEnd(const testing::TestInfo&) override {
        for (const auto& path : sharedMemoryEntries()) {
            if (before_.count(path) == 0) {
                std::filesystem::remove_all(path);
            }
        }
    }

    Paths before_;
};

}  // namespace

int main(int argc, char** argv) {
    int exitCode = 0;
    if (vantric_test::runRole(argc, argv, exitCode)) {
        return exitCode;
    }
    testing::InitGoogleTest(&argc, argv);
    if (!testing::GTEST_FLAG(list_tests)) {
        vantric_test::enterPrivateSharedMemory();
        // The test framework takes over the listener.
        testing::UnitTest::GetInstance()->listeners().Append(new LeftoverRemoval);
    }
    return RUN_ALL_TESTS();
}
