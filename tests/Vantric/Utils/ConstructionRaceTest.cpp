// Constructions of one lock that come between each other's check and post.
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <vector>

#include "Vantric/Utils/MultiProcessLock.h"
#include "tests/support/Polling.h"
#include "tests/support/RawSegment.h"
#include "tests/support/RawSemaphore.h"
#include "tests/support/Roles.h"
#include "tests/support/SemaphoreCalls.h"

namespace vantric_test {
namespace {

using com_qel::Orvane::Vantric::ClientServer::MultiProcessLock;

constexpr const char* racedLock = "TestLock";
constexpr const char* postSignal = "constructorsMayPost";
constexpr int racerCount = 5;

// Constructs a lock and stops between its check and its post until the signal is there.
const RoleRegistration stopping("stoppingConstructor", [](const Arguments&) {
    bool isSignalled = false;
    observeSemaphoreCalls([&](SemaphoreMoment moment, const sem_t*) {
        if (moment == SemaphoreMoment::AboutToPost) {
            std::puts("checked");
            std::fflush(stdout);
            isSignalled = eventually([] { return segmentExists(postSignal); });
        }
    });
    const MultiProcessLock lock(racedLock);
    return isSignalled ? 0 : 1;
});

// Lets several processes construct the lock so that all have checked before the first one posts.
void race() {
    std::vector<std::unique_ptr<ChildProcess>> racers;
    for (int count = 0; count < racerCount; ++count) {
        racers.push_back(std::make_unique<ChildProcess>(roleCommand("stoppingConstructor")));
        ASSERT_TRUE(racers.back()->waitForOutput("checked"));
    }
    ASSERT_EQ(semaphoreValue(racedLock), 0);
    const RawSegment signal(postSignal, 1);
    for (const auto& racer : racers) {
        const auto status = racer->wait();
        ASSERT_TRUE(status.has_value());
        EXPECT_EQ(status->raw, 0);
    }
}

TEST(ConstructionRace, aFreeSemaphoreRisesToTheNumberOfRacingProcesses) {
    const RawSemaphore semaphore(racedLock, 1);
    race();
    EXPECT_EQ(semaphore.value(), racerCount);
}

TEST(ConstructionRace, aLiveHolderAddsOneToTheHighestValue) {
    MultiProcessLock lock(racedLock);
    lock.lock();
    race();
    lock.unlock();
    EXPECT_EQ(semaphoreValue(racedLock), racerCount + 1);
}

}  // namespace
}  // namespace vantric_test
