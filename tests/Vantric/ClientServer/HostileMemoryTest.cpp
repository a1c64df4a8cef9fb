// Rings whose header another process has broken: nothing may be written outside the ring, nothing
// read from outside it, and nothing may crash or hang.
#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <iterator>

#include "Vantric/ClientServer/SharedMemoryCircularBuffer.h"
#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "Vantric/ClientServer/SharedMemoryModemState.h"
#include "tests/Vantric/ClientServer/RingImage.h"
#include "tests/support/ErrorRecord.h"
#include "tests/support/RawSemaphore.h"
#include "tests/support/Roles.h"

namespace vantric_test {
namespace {

using com_qel::Orvane::Vantric::ModemState;
using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands;
using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemState;

constexpr uint32_t untouchedCommand = 0xABCDABCD;

// One channel in both roles, on a ring that a case replaces as it likes.
struct BrokenRing {
    SharedMemoryModemCommands producer{false};
    SharedMemoryModemCommands consumer{true};
    RawSegment segment{ringName};
    RingImage image;
    uint32_t command = untouchedCommand;
    uint32_t size = 0;
    Bytes buffer;

    BrokenRing() {
        image.attached = 2;
        image.consumers = 1;
    }

    // Lays `image` into the object.
    void apply() { segment.write(0, image.bytes()); }

    // Enqueues and dequeues, and expects both to leave the object as it is.
    void expectUnusable() {
        apply();
        EXPECT_TRUE(enqueue(5));
        EXPECT_TRUE(holds(segment, image));
        EXPECT_FALSE(dequeue());
        EXPECT_TRUE(isUntouched());
        EXPECT_TRUE(holds(segment, image));
        EXPECT_EQ(semaphoreValue(ringLockName), 1);
    }

    bool enqueue(uint32_t id, const Bytes& payload = {}) {
        return producer.enqueue(id, payload.data(), static_cast<uint32_t>(payload.size()));
    }

    bool dequeue(uint32_t capacity = 100) {
        command = untouchedCommand;
        size = capacity;
        buffer.assign(100, 0xEE);
        return consumer.dequeue(command, buffer.data(), &size);
    }

    bool isUntouched(uint32_t capacity = 100) const {
        return command == untouchedCommand && size == capacity && buffer == Bytes(100, 0xEE);
    }
};

// Claims a huge payload. arguments: none
const RoleRegistration fooled("fooledConsumer", [](const std::vector<std::string>&) {
    BrokenRing ring;
    ring.image.put(0, {5, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF});
    ring.image.writeIndex = 100;
    ring.image.empty = 0;
    ring.apply();
    return !ring.dequeue() && ring.isUntouched() ? 0 : 1;
});

// Changes the ring's header all the time until it is killed. arguments: none
const RoleRegistration scribbler("scribbler", [](const std::vector<std::string>&) {
    RawSegment segment(ringName);
    const uint32_t values[] = {0, 1, 7, 8, 4095, 4096, 4097, 0x80000000, UINT32_MAX};
    std::puts("scribbling");
    std::fflush(stdout);
    for (std::size_t step = 0; true; ++step) {  // in time, every value in every word
        segment.writeWord(4, 1);
        segment.writeWord(16 + 4 * (step % 4), values[step % std::size(values)]);
        segment.writeWord(24, ringCapacity);
    }
    return 0;
});

TEST(HostileMemory, aCapacityThatCannotBeMakesTheRingUnusable) {
    for (const uint32_t capacity : {0U, 7U, 4097U, 65536U, 0x80000000U, UINT32_MAX}) {
        SCOPED_TRACE(capacity);
        BrokenRing ring;
        ring.image.capacity = capacity;
        ring.image.readIndex = 0;
        ring.image.writeIndex = capacity == 7 ? 6 : 20;
        ring.image.empty = 0;
        ring.expectUnusable();
        ring.image.writeIndex = 0;
        ring.image.full = 1;
        ring.expectUnusable();
        ring.image.full = 0;
        ring.image.empty = 1;
        ring.expectUnusable();
    }
}

TEST(HostileMemory, anIndexOutsideTheCapacityMakesTheRingUnusable) {
    for (const uint32_t capacity : {8U, 100U, ringCapacity}) {
        for (const uint32_t index : {capacity, capacity + 1, 0x80000000U, UINT32_MAX}) {
            SCOPED_TRACE(testing::Message() << "capacity " << capacity << ", index " << index);
            BrokenRing ring;
            ring.image.capacity = capacity;
            ring.image.readIndex = index;
            ring.image.writeIndex = 0;
            ring.expectUnusable();
            ring.image.readIndex = 0;
            ring.image.writeIndex = index;
            ring.expectUnusable();
            ring.image.readIndex = index;
            ring.expectUnusable();
            ring.image.empty = 0;
            ring.image.full = 1;
            ring.expectUnusable();
        }
    }
}

TEST(HostileMemory, aSmallerCapacityIsHonoured) {
    BrokenRing ring;
    ring.image.capacity = 24;
    ring.image.readIndex = 20;
    ring.image.writeIndex = 20;
    ring.apply();
    EXPECT_TRUE(ring.enqueue(5, {1, 2, 3}));
    ring.image.put(20, {5, 0, 0, 0});
    ring.image.put(0, {3, 0, 0, 0, 1, 2, 3});
    ring.image.writeIndex = 7;
    ring.image.empty = 0;
    EXPECT_TRUE(holds(ring.segment, ring.image));
    ASSERT_TRUE(ring.dequeue());
    EXPECT_EQ(ring.command, 5U);
    EXPECT_EQ(ring.size, 3U);
    EXPECT_EQ(Bytes(ring.buffer.begin(), ring.buffer.begin() + 3), (Bytes{1, 2, 3}));

    EXPECT_TRUE(ring.enqueue(6, Bytes(17)));  // a frame of 25 bytes
    ring.image.readIndex = 7;
    ring.image.empty = 1;
    EXPECT_TRUE(holds(ring.segment, ring.image));
}

TEST(HostileMemory, aFullRingOfEightBytesStillYieldsItsHeader) {
    BrokenRing ring;
    ring.image.capacity = 8;
    ring.image.put(0, {0, 0, 0, 0, 0, 5, 0, 0});
    ring.image.readIndex = 5;
    ring.image.writeIndex = 5;
    ring.image.full = 1;
    ring.image.empty = 0;
    ring.apply();
    EXPECT_TRUE(ring.dequeue());
    EXPECT_EQ(ring.command, 5U);
    ring.image.full = 0;
    ring.image.empty = 1;
    EXPECT_TRUE(holds(ring.segment, ring.image));
}

TEST(HostileMemory, equalIndicesWithBothFlagsSetCanBeWrittenAndRead) {
    BrokenRing ring;
    ring.image.full = 1;
    ring.image.empty = 1;
    ring.image.readIndex = 50;
    ring.image.writeIndex = 50;
    ring.image.put(50, frame(9));
    ring.apply();
    ASSERT_TRUE(ring.dequeue());
    EXPECT_EQ(ring.command, 9U);

    ring.apply();
    EXPECT_TRUE(ring.enqueue(6));
    ring.image.put(50, frame(6));
    ring.image.writeIndex = 58;
    ring.image.full = 0;
    ring.image.empty = 0;
    EXPECT_TRUE(holds(ring.segment, ring.image));
}

TEST(HostileMemory, equalIndicesWithBothFlagsClearAreNeitherWrittenNorRead) {
    BrokenRing ring;
    ring.image.full = 0;
    ring.image.empty = 0;
    ring.image.readIndex = 50;
    ring.image.writeIndex = 50;
    ring.expectUnusable();
}

TEST(HostileMemory, flagsDoNotMatterWhileTheIndicesDiffer) {
    for (const bool isSet : {false, true}) {
        const auto flag = static_cast<unsigned char>(isSet);
        BrokenRing ring;
        ring.image.full = flag;
        ring.image.empty = flag;
        ring.image.put(0, frame(9));
        ring.image.writeIndex = 8;
        ring.apply();
        EXPECT_TRUE(ring.enqueue(6));
        ring.image.put(8, frame(6));
        ring.image.writeIndex = 16;
        ring.image.full = 0;
        ring.image.empty = 0;
        EXPECT_TRUE(holds(ring.segment, ring.image));
        ring.segment.write(28, {flag, flag});
        ASSERT_TRUE(ring.dequeue());
        EXPECT_EQ(ring.command, 9U);
        ring.image.readIndex = 8;
        EXPECT_TRUE(holds(ring.segment, ring.image));
    }
}

TEST(HostileMemory, aFullFlagDoesNotMakeMoreOfUnequalIndices) {
    BrokenRing ring;
    ring.image.full = 1;
    ring.image.empty = 0;
    ring.image.put(0, {5, 0, 0, 0, 9, 0, 0, 0});
    ring.image.writeIndex = 7;  // a partial header
    ring.apply();
    EXPECT_FALSE(ring.dequeue());
    EXPECT_TRUE(holds(ring.segment, ring.image));

    ring.image.writeIndex = 16;  // one payload byte is missing
    ring.apply();
    EXPECT_FALSE(ring.dequeue());
    EXPECT_TRUE(ring.isUntouched());
    ring.image.readIndex = 8;
    ring.image.full = 0;
    EXPECT_TRUE(holds(ring.segment, ring.image));
}

TEST(HostileMemory, anEmptyFlagDoesNotMakeMoreRoomOfUnequalIndices) {
    BrokenRing ring;
    ring.image.empty = 1;
    ring.image.readIndex = 17;
    ring.image.writeIndex = 0;
    ring.apply();
    EXPECT_TRUE(ring.enqueue(5, pattern(10)));  // 18 bytes
    EXPECT_TRUE(holds(ring.segment, ring.image));
}

TEST(HostileMemory, aPayloadSizeBeyondTheRingIsRefusedHoweverLargeTheBufferClaimsToBe) {
    for (const uint32_t size : {101U, ringCapacity + 1, 0x80000000U, UINT32_MAX}) {
        BrokenRing ring;
        Bytes header;
        appendWord(header, 5);
        appendWord(header, size);
        ring.image.put(0, header);
        ring.image.writeIndex = 100;
        ring.image.empty = 0;
        ring.apply();
        EXPECT_FALSE(ring.dequeue(UINT32_MAX));
        EXPECT_TRUE(ring.isUntouched(UINT32_MAX));
        ring.image.readIndex = 8;
        EXPECT_TRUE(holds(ring.segment, ring.image));
    }
}

TEST(HostileMemory, aHugePayloadSizeIsLoggedAsTheNumberItIs) {
    const Result result = run(roleCommand("fooledConsumer", {}, errorsOnConsole()));
    ASSERT_TRUE(result.status.has_value());
    EXPECT_EQ(result.status->raw, 0) << result.errors;
    EXPECT_TRUE(isOneErrorRecord(result.output, "SharedMemoryModemCommands", 93,
                                 "Dequeue command insufficient payload buffer. Command: <5>, "
                                 "Received size: <4294967295>, Buffer size: <100"));
}

TEST(HostileMemory, endlessRoleCountsDoNoHarm) {
    BrokenRing ring;
    ring.image.producers = UINT32_MAX;
    ring.image.consumers = UINT32_MAX;
    ring.apply();
    {
        const SharedMemoryModemCommands producer(false);
        const SharedMemoryModemCommands consumer(true);
        EXPECT_EQ(ring.segment.word(8), 0U);
        EXPECT_EQ(ring.segment.word(12), 0U);
    }
    EXPECT_EQ(ring.segment.word(8), 0U);
    EXPECT_EQ(ring.segment.word(12), 0U);
}

TEST(HostileMemory, aHeaderThatChangesAllTheTimeDoesNoHarm) {
    BrokenRing ring;
    const Bytes payload = pattern(60);
    ChildProcess process(roleCommand("scribbler"));
    ASSERT_TRUE(process.waitForOutput("scribbling"));
    for (int round = 0; round < 20000; ++round) {
        ASSERT_TRUE(ring.enqueue(5, payload));
        ring.dequeue(60);
        ASSERT_EQ(Bytes(ring.buffer.begin() + 60, ring.buffer.end()), Bytes(40, 0xEE));
    }
    process.sendSignal(SIGKILL);
    ASSERT_TRUE(process.wait().has_value());

    EXPECT_EQ(ring.segment.bytes(4126, 2), (Bytes{0, 0}));
    EXPECT_EQ(semaphoreValue(ringLockName), 1);
    ring.apply();
    ASSERT_TRUE(ring.enqueue(5, payload));
    ASSERT_TRUE(ring.dequeue());
    EXPECT_EQ(ring.command, 5U);
}

TEST(HostileMemory, aRecordOfAnyBytesIsCopiedAsItIs) {
    SharedMemoryModemState segment;
    RawSegment object("ModemStateShm");
    object.write(12, Bytes(141, 0xFF));
    object.writeWord(4, 1);
    object.write(8, {1});
    ModemState record = {};
    EXPECT_TRUE(segment.read(record));
    EXPECT_EQ(record.timestamp, -1);
    EXPECT_EQ(record.wifiConnectionState[31], static_cast<char>(0xFF));
}

}  // namespace
}  // namespace vantric_test
