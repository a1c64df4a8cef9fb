// Operations that another process's hold of a lock keeps waiting.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "tests/support/ProcessFacts.h"
#include "tests/support/RawSegment.h"
#include "tests/support/RawSemaphore.h"

namespace vantric_test {

// Expects `operation` to leave the object as it is while the lock is held, to end after that, and
// to leave the lock free.
inline void expectToWaitFor(const std::string& lock, const std::string& object,
                            const std::function<void()>& operation) {
    const RawSegment segment(object);
    const Bytes before = segment.bytes();
    RawSemaphore semaphore(lock);
    ASSERT_TRUE(semaphore.tryTake());
    const BackgroundAction waiting(operation);
    EXPECT_TRUE(waiting.blocks());
    EXPECT_EQ(firstDifference(segment.bytes(), before), "");
    EXPECT_TRUE(segmentExists(object));
    semaphore.post();
    EXPECT_TRUE(waiting.ends());
    EXPECT_EQ(semaphore.value(), 1);
}

}  // namespace vantric_test
