// A process is killed before every single store of an operation: the next processes must get on.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <string>

#include "tests/Vantric/ClientServer/CommandChannel.h"
#include "tests/support/ProcessFacts.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/StoreWatch.h"

namespace vantric_test {
namespace {

using SharedMemoryModemCommands = CommandChannel::SharedMemoryModemCommands;

// Lets a process do the operation on an object with these bytes until it is killed before its first
// store, another until the second, and so on, and checks what each of them leaves.
template <class Operation, class Check>
void checkAfterEveryKill(const char* name, const Bytes& image, Operation operation, Check check) {
    void* object = mappingOf(segmentInode(name));
    RawSegment segment(name);
    bool isKilled = true;
    int stores = 0;
    for (; isKilled && !testing::Test::HasFatalFailure(); ++stores) {
        segment.write(0, image);
        const pid_t child = fork();
        if (child == 0) {
            int left = stores;
            const StoreWatch watch(object, image.size(), [&] {
                if (left-- == 0) {
                    raise(SIGKILL);
                }
            });
            operation();
            _exit(0);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        isKilled = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
        ASSERT_TRUE(isKilled || status == 0) << status;
        SCOPED_TRACE("store " + std::to_string(stores));
        check();
    }
    EXPECT_GE(stores, 3);
}

template <class Operation>
void expectExchangeAfterEveryKill(const RingImage& image, Operation operation) {
    SharedMemoryModemCommands channel(false);
    const auto exchange = [] {
        CommandChannel next;
        while (next.dequeue()) {
        }
        ASSERT_TRUE(next.enqueue(77, {1, 2}));
        ASSERT_TRUE(next.dequeue());
        ASSERT_EQ(next.command, 77U);
    };
    checkAfterEveryKill(
        ringName, image.bytes(), [&] { operation(channel); }, exchange);
}

// A ring whose header allows `capacity` bytes only, with these frames of 8 bytes in it.
RingImage smallRing(uint32_t capacity, uint32_t frames) {
    RingImage image = CommandChannel::empty();
    image.capacity = capacity;
    image.writeIndex = 8 * frames % capacity;
    image.full = 8 * frames == capacity ? 1 : 0;
    image.empty = frames == 0 ? 1 : 0;
    for (uint32_t index = 0; index < frames; ++index) {
        image.put(std::size_t{8} * index, frame(5));
    }
    return image;
}

TEST(KilledBetweenStores, inEnqueueTheNextClientReachesTheNextServer) {
    const auto enqueueTwoBytes = [](SharedMemoryModemCommands& channel) {
        const unsigned char payload[] = {7, 8};
        channel.enqueue(6, payload, 2);
    };
    expectExchangeAfterEveryKill(smallRing(10, 0), enqueueTwoBytes);
    expectExchangeAfterEveryKill(smallRing(18, 1), enqueueTwoBytes);
    expectExchangeAfterEveryKill(smallRing(ringCapacity, 0), enqueueTwoBytes);
}

TEST(KilledBetweenStores, inDequeueTheNextClientReachesTheNextServer) {
    const auto dequeue = [](SharedMemoryModemCommands& channel) {
        uint32_t command = 0;
        channel.dequeue(command, nullptr, nullptr);
    };
    expectExchangeAfterEveryKill(smallRing(16, 2), dequeue);
    expectExchangeAfterEveryKill(smallRing(ringCapacity, 1), dequeue);
    expectExchangeAfterEveryKill(smallRing(ringCapacity, 2), dequeue);
}

TEST(KilledBetweenStores, inTheFirstPublishNobodyReadsAPartOfTheRecord) {
    using Segment = Vantric::ClientServer::SharedMemoryModemState;
    constexpr const char* name = "ModemStateShm";
    const Vantric::ModemState whole = freshState();
    Segment server;
    const Bytes unpublished = RawSegment(name).bytes();
    int reads = 0;
    const auto readAll = [&] {
        Vantric::ModemState record = {};
        if (Segment().read(record)) {
            ++reads;
            ASSERT_EQ(std::memcmp(&record, &whole, sizeof(whole)), 0);
        }
    };
    checkAfterEveryKill(
        name, unpublished, [&] { server.publish(whole); }, readAll);
    EXPECT_GE(reads, 1);
}

}  // namespace
}  // namespace vantric_test
