#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <thread>
#include <vector>

#include "Vantric/Utils/ImmortalKeeper.h"
#include "tests/support/Allocations.h"
#include "tests/support/Roles.h"

namespace vantric_test {
namespace {

using com_qel::Orvane::Vantric::keepUntilProcessEnds;

static_assert(noexcept(keepUntilProcessEnds(nullptr)));

constexpr int objectCount = 200;

struct Canary {
    explicit Canary(int& count) : destroyed(count) {}
    ~Canary() { ++destroyed; }
    int& destroyed;
};

// Abandons objects. arguments: "kept" hands them in first
const RoleRegistration abandoner("abandoner", [](const Arguments& arguments) {
    for (int index = 0; index < objectCount; ++index) {
        const int* object = new int(index);
        if (arguments.at(0) == "kept") {
            keepUntilProcessEnds(object);
        }
    }
    return 0;
});

TEST(ImmortalKeeper, objectsHandedInAreNoLeaks) {
    const Result result = run(roleCommand("abandoner", {"kept"}));
    EXPECT_EQ(result.status.raw, 0);
    EXPECT_EQ(result.errors, "");
}

#if defined(__SANITIZE_ADDRESS__)
TEST(ImmortalKeeper, objectsNotHandedInAreLeaksUnderTheLeakChecker) {
    const Result result = run(roleCommand("abandoner", {"dropped"}));
    EXPECT_NE(result.status.raw, 0);
    EXPECT_NE(result.errors.find("LeakSanitizer"), std::string::npos);
}
#endif

TEST(ImmortalKeeper, doesNotOwnWhatItKeeps) {
    int destroyed = 0;
    auto canary = std::make_unique<Canary>(destroyed);
    keepUntilProcessEnds(canary.get());
    keepUntilProcessEnds(canary.get());
    EXPECT_EQ(destroyed, 0);
    canary.reset();
    EXPECT_EQ(destroyed, 1);
}

TEST(ImmortalKeeper, ignoresNull) {
    const Allocations allocations;
    keepUntilProcessEnds(nullptr);
    EXPECT_EQ(allocations.count(), 0U);
}

TEST(ImmortalKeeper, anObjectThatCannotBeRememberedIsMerelyNotRemembered) {
    static const char object = 'x';
    // The keeper has room for some more before it must allocate.
    const auto needsMemory = [](std::size_t failingAllocation) {
        const Allocations allocations(failingAllocation);
        keepUntilProcessEnds(&object);
        return allocations.count() > 0;
    };
    int kept = 0;
    while (!needsMemory(1) && kept < 100000) {
        ++kept;
    }
    EXPECT_LT(kept, 100000);
    EXPECT_TRUE(needsMemory(1)) << "the object that failed was remembered";
    EXPECT_TRUE(needsMemory(0));
}

TEST(ImmortalKeeper, takesObjectsFromSeveralThreads) {
    constexpr int threadCount = 4;
    int destroyed = 0;
    std::vector<std::unique_ptr<Canary>> canaries(std::size_t{threadCount} * objectCount);
    for (auto& canary : canaries) {
        canary = std::make_unique<Canary>(destroyed);
    }
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([&canaries, thread] {
            for (std::size_t index = thread; index < canaries.size(); index += threadCount) {
                keepUntilProcessEnds(canaries[index].get());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(destroyed, 0);
}

}  // namespace
}  // namespace vantric_test
