#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "tests/Vantric/ClientServer/RingImage.h"
#include "tests/support/Polling.h"
#include "tests/support/RawSemaphore.h"
#include "tests/support/Roles.h"

namespace vantric_test {
namespace {

using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands;

constexpr uint32_t framesPerProducer = 4000;
constexpr const char* startSignal = "producersMayStart";

// The payload of a frame: its number, then filling that depends on producer and number.
Bytes payloadOf(uint32_t producer, uint32_t number) {
    Bytes payload;
    appendWord(payload, number);
    payload.insert(payload.end(), (number * 7 + producer) % 700,
                   static_cast<unsigned char>(number + 100 * producer));
    return payload;
}

// Far below full, so that both producers' next frames fit even if they saw an outdated index.
bool hasPlentyOfRoom(const RawSegment& segment) {
    const uint32_t readIndex = segment.word(16);
    const uint32_t writeIndex = segment.word(20);
    return (writeIndex - readIndex) % ringCapacity < ringCapacity / 3;
}

// Enqueues numbered frames once the start signal is there. arguments: the producer's command
const RoleRegistration producerRole("producer", [](const std::vector<std::string>& arguments) {
    const auto command = static_cast<uint32_t>(std::stoul(arguments.at(0)));
    SharedMemoryModemCommands channel(false);
    const RawSegment segment(ringName);
    std::puts("attached");
    std::fflush(stdout);
    if (!eventually([] { return segmentExists(startSignal); })) {
        return 1;
    }
    for (uint32_t number = 0; number < framesPerProducer; ++number) {
        const auto deadline = std::chrono::steady_clock::now() + defaultPatience;
        while (!hasPlentyOfRoom(segment)) {
            if (std::chrono::steady_clock::now() > deadline) {
                return 2;
            }
            std::this_thread::yield();
        }
        const Bytes payload = payloadOf(command, number);
        channel.enqueue(command, payload.data(), static_cast<uint32_t>(payload.size()));
    }
    return 0;
});

TEST(SharedMemoryModemCommands, framesOfTwoProcessesArriveWholeAndInOrder) {
    // Constructing a channel releases the locks, so they attach one after the other and only then
    // use it.
    SharedMemoryModemCommands consumer(true);
    ChildProcess first(roleCommand("producer", {"0"}));
    ASSERT_TRUE(first.waitForOutput("attached"));
    ChildProcess second(roleCommand("producer", {"1"}));
    ASSERT_TRUE(second.waitForOutput("attached"));
    ASSERT_EQ(semaphoreValue(ringLockName), 1);
    const RawSegment start(startSignal, 1);

    uint32_t arrived[2] = {};
    bool isSound = true;
    const auto takeFrame = [&] {
        uint32_t command = 0;
        unsigned char buffer[1000];
        uint32_t size = sizeof(buffer);
        if (!consumer.dequeue(command, buffer, &size)) {
            return false;
        }
        isSound =
            command < 2 && Bytes(buffer, buffer + size) == payloadOf(command, arrived[command]++);
        return true;
    };
    const auto allArrived = [&] {
        return arrived[0] == framesPerProducer && arrived[1] == framesPerProducer;
    };
    EXPECT_TRUE(eventually([&] {
        while (isSound && takeFrame()) {
        }
        return !isSound || allArrived();
    }));
    EXPECT_TRUE(isSound) << "after " << arrived[0] << " and " << arrived[1] << " frames";
    EXPECT_TRUE(allArrived()) << arrived[0] << " and " << arrived[1] << " frames";
    for (ChildProcess* producer : {&first, &second}) {
        ASSERT_TRUE(producer->wait().has_value());
        EXPECT_EQ(producer->wait()->raw, 0);
    }
    EXPECT_EQ(semaphoreValue(ringLockName), 1);
}

}  // namespace
}  // namespace vantric_test
