// Lets the cases of a binary run in one process, one after the other: removes the objects that a
// case leaves behind in the private /dev/shm, as semaphores always are.
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

// The test framework takes over the listener.
[[maybe_unused]] const bool isInstalled = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new LeftoverRemoval);
    return true;
}();

}  // namespace
}  // namespace vantric_test
