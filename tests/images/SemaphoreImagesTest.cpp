// The bytes of a lock's semaphore. They are the C library's and differ between word sizes, so
// server and clients must agree on both.
#include <gtest/gtest.h>

#include "Vantric/Utils/MultiProcessLock.h"
#include "tests/support/ProcessFacts.h"
#include "tests/support/RawSegment.h"
#include "tests/support/RawSemaphore.h"

namespace vantric_test {
namespace {

using com_qel::Orvane::Vantric::ClientServer::MultiProcessLock;

constexpr bool is64Bit = sizeof(void*) == 8;

void expectWords(const std::vector<uint32_t>& with64Bits, const std::vector<uint32_t>& with32Bits) {
    Bytes expected;
    for (const uint32_t word : is64Bit ? with64Bits : with32Bits) {
        appendWord(expected, word);
    }
    EXPECT_EQ(RawSegment(semaphoreObject("TestLock")).bytes(), expected);
}

TEST(SemaphoreImage, ofAFreeLock) {
    const MultiProcessLock lock("TestLock");
    expectWords({1, 0, 128, 0, 0, 0, 0, 0}, {2, 128, 0, 0});
}

TEST(SemaphoreImage, ofAHeldLock) {
    MultiProcessLock lock("TestLock");
    lock.lock();
    expectWords({0, 0, 128, 0, 0, 0, 0, 0}, {0, 128, 0, 0});
}

TEST(SemaphoreImage, ofALockThatAProcessWaitsFor) {
    MultiProcessLock lock("TestLock");
    lock.lock();
    const BackgroundAction waiter([&] { lock.lock(); });
    EXPECT_TRUE(waiter.blocks());
    expectWords({0, 1, 128, 0, 0, 0, 0, 0}, {1, 128, 0, 1});
    lock.unlock();
}

}  // namespace
}  // namespace vantric_test
