#include "tests/support/LeftoverRemoval.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

namespace vantric_test {

namespace {

using Paths = std::set<std::filesystem::path>;

Paths sharedMemoryEntries() {
    Paths paths;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/shm")) {
        paths.insert(entry.path());
    }
    return paths;
}

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

void removeLeftoversOfEachCase() {
    // The test framework takes over the listener.
    testing::UnitTest::GetInstance()->listeners().Append(new LeftoverRemoval);
}

}  // namespace vantric_test
