#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>

#include "Vantric/Utils/MultiProcessLock.h"
#include "tests/support/ErrorRecord.h"
#include "tests/support/Privileges.h"
#include "tests/support/ProcessFacts.h"
#include "tests/support/RawSegment.h"
#include "tests/support/RawSemaphore.h"
#include "tests/support/Roles.h"

namespace vantric_test {
namespace {

using com_qel::Orvane::Vantric::ClientServer::MultiProcessLock;

static_assert(sizeof(MultiProcessLock) == sizeof(void*));

constexpr const char* name = "TestLock";

void report(const char* text) {
    std::puts(text);
    std::fflush(stdout);
}

[[noreturn]] void waitToBeKilled() {
    while (true) {
        pause();
    }
}

// arguments: name of the lock
const RoleRegistration holder("lockHolder", [](const std::vector<std::string>& arguments) {
    MultiProcessLock lock(arguments.at(0));
    lock.lock();
    report("held");
    waitToBeKilled();
    return 0;
});

// Waits for a lock while every SIGUSR1 interrupts it. arguments: name of the lock
const RoleRegistration interrupted("interruptedWaiter", [](const std::vector<std::string>& names) {
    MultiProcessLock lock(names.at(0));
    lock.lock();
    struct sigaction action = {};
    action.sa_handler = [](int) {};  // without SA_RESTART
    sigaction(SIGUSR1, &action, nullptr);
    report("waiting");
    lock.lock();
    report("proceeded");
    return 0;
});

// Uses a lock that cannot be opened. arguments: name of the lock, "obeyFileModes" or "no hindrance"
const RoleRegistration unopenable("lockUser", [](const std::vector<std::string>& arguments) {
    if (arguments.at(1) == "obeyFileModes" && !obeyFileModes()) {
        return 1;
    }
    MultiProcessLock lock(arguments.at(0));
    lock.lock();
    lock.lock();
    lock.unlock();
    return 0;
});

void expectOneRecordAndNoHarm(const std::string& lockName,
                              const std::string& hindrance = "no hindrance") {
    const Result result = run(roleCommand("lockUser", {lockName, hindrance}, errorsOnConsole()));
    ASSERT_TRUE(result.status.has_value());
    EXPECT_EQ(result.status->raw, 0) << result.errors;
    EXPECT_TRUE(isOneErrorRecord(result.output, "MultiProcessLock", 56,
                                 "MultiProcessLock: sem_open failed"));
}

// Creates a lock under a file mode creation mask; the result is its object's mode.
mode_t modeUnderMask(mode_t mask) {
    const mode_t previous = umask(mask);
    MultiProcessLock lock(name);
    umask(previous);
    return segmentMode(semaphoreObject(name));
}

TEST(MultiProcessLock, createsAMissingSemaphoreFree) {
    MultiProcessLock lock(name);
    EXPECT_EQ(semaphoreValue(name), 1);
}

TEST(MultiProcessLock, releasesASemaphoreFoundHeld) {
    const RawSemaphore semaphore(name, 0);
    MultiProcessLock lock(name);
    EXPECT_EQ(semaphore.value(), 1);
}

TEST(MultiProcessLock, leavesAFreeSemaphoreFree) {
    const RawSemaphore semaphore(name, 1);
    MultiProcessLock lock(name);
    EXPECT_EQ(semaphore.value(), 1);
}

TEST(MultiProcessLock, doesNotRepairASemaphorePostedTooOften) {
    const RawSemaphore semaphore(name, 2);
    MultiProcessLock lock(name);
    EXPECT_EQ(semaphore.value(), 2);
}

TEST(MultiProcessLock, lockTakesAndUnlockPosts) {
    MultiProcessLock lock(name);
    lock.lock();
    EXPECT_EQ(semaphoreValue(name), 0);
    lock.unlock();
    EXPECT_EQ(semaphoreValue(name), 1);
}

TEST(MultiProcessLock, unlockPostsEvenAFreeSemaphore) {
    MultiProcessLock lock(name);
    lock.unlock();
    EXPECT_EQ(semaphoreValue(name), 2);
}

TEST(MultiProcessLock, twoLocksOfOneNameExcludeEachOther) {
    MultiProcessLock first(name);
    MultiProcessLock second(name);
    first.lock();
    const BackgroundAction waiter([&] { second.lock(); });
    EXPECT_TRUE(waiter.blocks());
    first.unlock();
    EXPECT_TRUE(waiter.ends());
    EXPECT_EQ(semaphoreValue(name), 0);
}

TEST(MultiProcessLock, isNotRecursive) {
    MultiProcessLock lock(name);
    lock.lock();
    const BackgroundAction waiter([&] { lock.lock(); });
    EXPECT_TRUE(waiter.blocks());
    lock.unlock();
    EXPECT_TRUE(waiter.ends());
}

TEST(MultiProcessLock, locksOfDifferentNamesAreIndependent) {
    MultiProcessLock first("FirstLock");
    MultiProcessLock second("SecondLock");
    first.lock();
    EXPECT_EQ(semaphoreValue("FirstLock"), 0);
    EXPECT_EQ(semaphoreValue("SecondLock"), 1);
}

TEST(MultiProcessLock, theSemaphoreOutlivesItsLocksWithItsLastValue) {
    {
        MultiProcessLock lock(name);
        lock.lock();
    }
    EXPECT_EQ(semaphoreValue(name), 0);
}

TEST(MultiProcessLock, closesItsHandleWhenDestroyed) {
    {
        MultiProcessLock lock(name);
        EXPECT_TRUE(isMapped(segmentInode(semaphoreObject(name))));
    }
    EXPECT_FALSE(isMapped(segmentInode(semaphoreObject(name))));
}

TEST(MultiProcessLock, takesTheNameAsItStands) {
    const std::string oddName = "odd \x01 name,Lock";
    MultiProcessLock lock(oddName);
    EXPECT_TRUE(segmentExists("sem." + oddName));
}

TEST(MultiProcessLock, everybodyMayReadAndWriteTheSemaphore) {
    EXPECT_EQ(modeUnderMask(0), 0666U);
}

TEST(MultiProcessLock, theFileModeCreationMaskApplies) {
    EXPECT_EQ(modeUnderMask(027), 0640U);
}

TEST(MultiProcessLock, theNextConstructionReleasesALockWhoseHolderWasKilled) {
    ChildProcess child(roleCommand("lockHolder", {name}));
    ASSERT_TRUE(child.waitForOutput("held"));
    child.sendSignal(SIGKILL);
    ASSERT_TRUE(child.wait().has_value());
    ASSERT_EQ(semaphoreValue(name), 0);

    MultiProcessLock lock(name);
    EXPECT_EQ(semaphoreValue(name), 1);
}

TEST(MultiProcessLock, constructionReleasesALockThatALiveProcessHolds) {
    ChildProcess child(roleCommand("lockHolder", {name}));
    ASSERT_TRUE(child.waitForOutput("held"));
    ASSERT_EQ(semaphoreValue(name), 0);

    MultiProcessLock lock(name);
    EXPECT_EQ(semaphoreValue(name), 1);
    EXPECT_FALSE(child.wait(0ms).has_value());
}

TEST(MultiProcessLock, excludesOtherProcesses) {
    MultiProcessLock lock(name);
    ChildProcess child(roleCommand("lockHolder", {name}));
    ASSERT_TRUE(child.waitForOutput("held"));
    const BackgroundAction waiter([&] { lock.lock(); });
    EXPECT_TRUE(waiter.blocks());
    RawSemaphore(name).post();
    EXPECT_TRUE(waiter.ends());
}

TEST(MultiProcessLock, anInterruptedWaitProceedsAsIfTheLockWereHeld) {
    ChildProcess child(roleCommand("interruptedWaiter", {name}));
    ASSERT_TRUE(child.waitForOutput("waiting"));
    ASSERT_TRUE(eventuallyBlocks(child.pid(), [&] { return child.wait(0ms).has_value(); }));
    EXPECT_TRUE(eventually([&] {
        child.sendSignal(SIGUSR1);
        return child.wait(0ms).has_value();
    }));
    EXPECT_EQ(child.output(), "waiting\nproceeded\n");
    EXPECT_EQ(semaphoreValue(name), 0);
}

TEST(MultiProcessLock, aDirectoryInTheWayIsLoggedOnceAndTheLockThenDoesNothing) {
    ASSERT_EQ(mkdir(segmentPath(semaphoreObject(name)).c_str(), 0777), 0);
    expectOneRecordAndNoHarm(name);
}

TEST(MultiProcessLock, aNameThatCannotBeIsLoggedOnceAndTheLockThenDoesNothing) {
    expectOneRecordAndNoHarm("no/such/name");
    expectOneRecordAndNoHarm("");
}

TEST(MultiProcessLock, aLackOfPermissionIsLoggedOnceAndTheLockThenDoesNothing) {
    const RawSemaphore semaphore(name, 1);
    ASSERT_EQ(chmod(segmentPath(semaphoreObject(name)).c_str(), 0), 0);
    expectOneRecordAndNoHarm(name, "obeyFileModes");
    EXPECT_EQ(semaphore.value(), 1);
}

}  // namespace
}  // namespace vantric_test
