// Producers and a consumer at the command ring. Each producer has at most its share of the ring
// unread, so nothing may be dropped and every frame must arrive.
#include <gtest/gtest.h>
#include <sched.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "tests/soak/Workers.h"

namespace vantric_soak {
namespace {

using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands;
using Payload = std::vector<unsigned char>;

constexpr uint32_t ringCapacity = 4096;
constexpr uint32_t frameHeaderSize = 8;
constexpr uint32_t producerCount = 4;
constexpr uint32_t share = ringCapacity / producerCount;
constexpr uint32_t bufferSize = 2048;  // no payload is as large
constexpr uint32_t enoughFrames = 1000;

// The sequence numbers below 2^24 are in the command, which also names the producer.
constexpr uint32_t producerFactor = 1U << 24U;

struct FramesArea {
    std::array<std::atomic<uint32_t>, producerCount> written;  // frames
    std::array<std::atomic<uint64_t>, producerCount> read;     // bytes
    std::array<std::atomic<uint32_t>, producerCount> arrived;  // frames
    std::atomic<uint32_t> endedProducers{0};
};

Payload payloadOf(uint32_t command) {
    const uint32_t key = mixed(command);
    Payload payload(key % (share - frameHeaderSize + 1));
    for (std::size_t index = 0; index < payload.size(); ++index) {
        payload[index] = static_cast<unsigned char>(key + index * 31);
    }
    return payload;
}

void produce(uint32_t producer, Workers& workers, FramesArea& area) {
    SharedMemoryModemCommands channel(false);
    workers.attached();
    uint64_t writtenBytes = 0;
    for (uint32_t sequence = 0; workers.goesOn(); ++sequence) {
        const uint32_t command = producer * producerFactor + sequence % producerFactor;
        const Payload payload = payloadOf(command);
        writtenBytes += frameHeaderSize + payload.size();
        while (writtenBytes - area.read.at(producer) > share) {
            sched_yield();
        }
        channel.enqueue(command, payload.data(), static_cast<uint32_t>(payload.size()));
        ++area.written.at(producer);
    }
    ++area.endedProducers;
}

// Takes the ring's first frame, which must be its producer's next one; false for an empty ring.
bool takeFrame(SharedMemoryModemCommands& channel, FramesArea& area) {
    Payload payload(bufferSize);
    uint32_t command = 0;
    uint32_t size = bufferSize;
    if (!channel.dequeue(command, payload.data(), &size)) {
        return false;
    }
    const uint32_t producer = command / producerFactor;
    require(producer < producerCount, "a frame has a command that was never sent");
    const uint32_t sequence = area.arrived.at(producer)++;
    require(command % producerFactor == sequence % producerFactor,
            "frame " + std::to_string(sequence) + " of producer " + std::to_string(producer) +
                " did not arrive in its turn");
    payload.resize(size == bufferSize ? 0 : size);
    require(payload == payloadOf(command), "a frame has another payload than was sent");
    area.read.at(producer) += frameHeaderSize + payload.size();
    return true;
}

void consume(Workers& workers, FramesArea& area) {
    SharedMemoryModemCommands channel(true);
    workers.attached();
    bool isLastRound = false;
    while (true) {
        while (takeFrame(channel, area)) {
        }
        if (isLastRound) {
            return;
        }
        isLastRound = area.endedProducers == producerCount;
        sched_yield();
    }
}

TEST(Frames, ofSeveralProducersArriveWholeAndInOrder) {
    Workers workers;
    const SharedArea<FramesArea> area;
    workers.start([&] { consume(workers, *area); });
    for (uint32_t producer = 0; producer < producerCount; ++producer) {
        workers.start([&, producer] { produce(producer, workers, *area); });
    }
    EXPECT_TRUE(workers.work([&] {
        return std::all_of(area->arrived.begin(), area->arrived.end(),
                           [](const auto& count) { return count >= enoughFrames; });
    }));
    for (uint32_t producer = 0; producer < producerCount; ++producer) {
        EXPECT_EQ(area->arrived.at(producer), area->written.at(producer)) << producer;
    }
}

}  // namespace
}  // namespace vantric_soak
