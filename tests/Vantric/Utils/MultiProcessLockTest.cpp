#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <cstdio>
#include <string>
#include <utility>

#include "Vantric/Utils/MultiProcessLock.h"
#include "tests/support/LogTranscript.h"
#include "tests/support/Privileges.h"
#include "tests/support/ProcessFacts.h"
#include "tests/support/RawSegment.h"
#include "tests/support/RawSemaphore.h"
#include "tests/support/Roles.h"

namespace vantric_test {
namespace {

using com_qel::Orvane::Vantric::ClientServer::MultiProcessLock;

static_assert(sizeof(MultiProcessLock) == sizeof(void*));

constexpr const char* testLock = "TestLock";

void report(const char* text) {
    std::puts(text);
    std::fflush(stdout);
}

// Waits for a lock while every SIGUSR1 interrupts it. arguments: name of the lock
const RoleRegistration interrupted("interruptedWaiter", [](const Arguments& names) {
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

// Uses a lock that cannot be opened. arguments: name of the lock
const RoleRegistration unopenable("lockUser", [](const Arguments& arguments) {
    MultiProcessLock lock(arguments.at(0));
    lock.lock();
    lock.lock();
    lock.unlock();
    return 0;
});

void expectOneRecordAndNoHarm(const std::string& nameOfLock) {
    Command command = roleCommand("lockUser", {nameOfLock}, loggingFrom("error"));
    command.preparations = {obeyFileModes};
    const Result result = run(command);
    EXPECT_EQ(result.status.raw, 0) << result.errors;
    EXPECT_EQ(withoutStamps(result.output),
              errorRecord("MultiProcessLock", "MultiProcessLock: sem_open failed", "   56"));
}

// Creates a lock under a file mode creation mask; the result is its object's mode.
mode_t modeUnderMask(mode_t mask) {
    const mode_t previous = umask(mask);
    MultiProcessLock lock(testLock);
    umask(previous);
    return segmentMode(semaphoreObject(testLock));
}

TEST(MultiProcessLock, isFreeOnceConstructedAndKeepsAHigherValue) {
    for (const auto& [found, expected] : {std::pair(0U, 1), std::pair(1U, 1), std::pair(2U, 2)}) {
        const std::string nameOfLock = testLock + std::to_string(found);
        const RawSemaphore semaphore(nameOfLock, found);
        MultiProcessLock lock(nameOfLock);
        EXPECT_EQ(semaphore.value(), expected);
    }
    MultiProcessLock lock(testLock);
    EXPECT_EQ(semaphoreValue(testLock), 1);
}

TEST(MultiProcessLock, twoLocksOfOneNameExcludeEachOther) {
    MultiProcessLock first(testLock);
    MultiProcessLock second(testLock);
    first.lock();
    const BackgroundAction waiter([&] { second.lock(); });
    EXPECT_TRUE(waiter.blocks());
    first.unlock();
    EXPECT_TRUE(waiter.ends());
    EXPECT_EQ(semaphoreValue(testLock), 0);
}

TEST(MultiProcessLock, theSemaphoreOutlivesItsLocksWithItsLastValue) {
    {
        MultiProcessLock lock(testLock);
        lock.lock();
    }
    EXPECT_EQ(semaphoreValue(testLock), 0);
}

TEST(MultiProcessLock, closesItsHandleWhenDestroyed) {
    {
        MultiProcessLock lock(testLock);
        EXPECT_TRUE(isMapped(segmentInode(semaphoreObject(testLock))));
    }
    EXPECT_FALSE(isMapped(segmentInode(semaphoreObject(testLock))));
}

TEST(MultiProcessLock, everyUserMayReadAndWriteTheSemaphore) {
    EXPECT_EQ(modeUnderMask(0), 0666U);
}

TEST(MultiProcessLock, anInterruptedWaitProceedsAsIfTheLockWereHeld) {
    ChildProcess child(roleCommand("interruptedWaiter", {testLock}));
    ASSERT_TRUE(child.waitForOutput("waiting"));
    ASSERT_TRUE(eventuallyBlocks(child.pid(), [&] { return child.wait(0ms).has_value(); }));
    EXPECT_TRUE(eventually([&] {
        child.sendSignal(SIGUSR1);
        return child.wait(0ms).has_value();
    }));
    EXPECT_EQ(child.output(), "waiting\nproceeded\n");
    EXPECT_EQ(semaphoreValue(testLock), 0);
}

TEST(MultiProcessLock, aDirectoryInTheWayIsLoggedOnceAndTheLockThenDoesNothing) {
    ASSERT_EQ(mkdir(segmentPath(semaphoreObject(testLock)).c_str(), 0777), 0);
    expectOneRecordAndNoHarm(testLock);
}

TEST(MultiProcessLock, anInvalidNameIsLoggedOnceAndTheLockThenDoesNothing) {
    expectOneRecordAndNoHarm("no/such/name");
    expectOneRecordAndNoHarm("");
}

TEST(MultiProcessLock, aLackOfPermissionIsLoggedOnceAndTheLockThenDoesNothing) {
    const RawSemaphore semaphore(testLock, 1);
    ASSERT_EQ(chmod(segmentPath(semaphoreObject(testLock)).c_str(), 0), 0);
    expectOneRecordAndNoHarm(testLock);
    EXPECT_EQ(semaphore.value(), 1);
}

}  // namespace
}  // namespace vantric_test
