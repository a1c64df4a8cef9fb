// Every operation in every state of a small ring: its result, the state it leaves, and the state
// that a process killed between any two of its stores leaves.
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <vector>

#include "Vantric/ClientServer/SharedMemoryCircularBuffer.h"
#include "tests/Vantric/ClientServer/RingImage.h"
#include "tests/support/ProcessFacts.h"
#include "tests/support/SemaphoreCalls.h"
#include "tests/support/StoreWatch.h"

namespace vantric_test {
namespace {

// Instantiated here only, so that the ring is compiled with this file's optimisation.
constexpr uint32_t capacity = 6;
using SmallRing =
    com_qel::Orvane::Vantric::ClientServer::SharedMemoryCircularBuffer<unsigned char, capacity>;

struct State {
    uint32_t readIndex;
    Bytes unread;
    unsigned int flags;  // both of them, for unequal indices, which give them no meaning
};

void setUp(SmallRing::Memory& memory, const State& state) {
    const auto used = static_cast<uint32_t>(state.unread.size());
    memory.readIndex = state.readIndex;
    memory.writeIndex = (state.readIndex + used) % capacity;
    const unsigned int flags = used == 0 ? 2U : used == capacity ? 1U : state.flags;
    memory.full = static_cast<uint8_t>(flags & 1U);
    memory.empty = static_cast<uint8_t>(flags >> 1U);
    for (uint32_t index = 0; index < capacity; ++index) {
        memory.data[(state.readIndex + index) % capacity] = index < used ? state.unread[index] : 0;
    }
}

// What a user of the ring finds unread; nothing in a ring that no operation can use again.
std::optional<Bytes> unreadOf(const SmallRing::Memory& memory) {
    uint32_t used = (memory.writeIndex + capacity - memory.readIndex) % capacity;
    if (memory.readIndex == memory.writeIndex) {
        if (memory.full == memory.empty) {
            return std::nullopt;
        }
        used = memory.full * capacity;
    }
    Bytes unread;
    for (uint32_t index = 0; index < used; ++index) {
        unread.push_back(memory.data[(memory.readIndex + index) % capacity]);
    }
    return unread;
}

// Does `operation` with a run of `count` and expects what is unread to become `after`, or the
// object to stay as it is without one, and at each store to be as before or as after.
template <class Operation>
void expectChange(SmallRing& ring, const State& before, uint32_t count, Operation operation,
                  uint32_t readIndexAfter, const std::optional<Bytes>& after) {
    SmallRing::Memory& memory = *ring.accessor().memory();
    setUp(memory, before);
    const RawSegment object("SmallRing");
    const Bytes image = object.bytes();
    std::vector<std::optional<Bytes>> found;
    {
        const StoreWatch watch(&memory, sizeof(memory), [&] { found.push_back(unreadOf(memory)); });
        EXPECT_EQ(operation(ring, count), after.has_value());
    }
    if (!after) {
        EXPECT_TRUE(found.empty());
        EXPECT_EQ(object.bytes(), image);
        return;
    }
    EXPECT_EQ(unreadOf(memory), after);
    EXPECT_EQ(memory.readIndex, readIndexAfter);
    EXPECT_EQ(memory.full, after->size() == capacity ? 1 : 0);
    EXPECT_EQ(memory.empty, after->empty() ? 1 : 0);
    EXPECT_GE(found.size(), 2U);
    for (const auto& unread : found) {
        EXPECT_TRUE(unread == before.unread || unread == after)
            << "before store " << &unread - found.data();
    }
}

// Calls `check` for every place to start at, every fill and every run of up to one element too
// many.
template <class Check>
void forEveryState(Check check) {
    SmallRing ring("SmallRing", false);
    for (uint32_t readIndex = 0; readIndex < capacity; ++readIndex) {
        for (uint32_t used = 0; used <= capacity; ++used) {
            for (uint32_t count = 1; count <= capacity + 1; ++count) {
                for (const unsigned int flags : {0U, 1U, 2U, 3U}) {
                    SCOPED_TRACE(testing::Message()
                                 << "read index " << readIndex << ", " << used << " in use, run of "
                                 << count << ", flags " << flags);
                    check(ring, State{readIndex, pattern(used), flags}, count);
                }
            }
        }
    }
}

TEST(SharedMemoryCircularBuffer, aPushIsAllOrNothingInEveryStateAndAtEveryStore) {
    const Bytes run = {91, 92, 93, 94, 95, 96, 97};
    forEveryState([&](SmallRing& ring, const State& state, uint32_t count) {
        std::optional<Bytes> after;
        if (state.unread.size() + count <= capacity) {
            after = state.unread;
            after->insert(after->end(), run.begin(), run.begin() + count);
        }
        const auto push = [&](SmallRing& target, uint32_t length) {
            return target.push(run.data(), length);
        };
        expectChange(ring, state, count, push, state.readIndex, after);
    });
}

TEST(SharedMemoryCircularBuffer, aPopIsAllOrNothingInEveryStateAndAtEveryStore) {
    forEveryState([](SmallRing& ring, const State& state, uint32_t count) {
        std::optional<Bytes> after;
        Bytes taken(capacity + 1, 0xEE);
        Bytes expected = taken;
        if (count <= state.unread.size()) {
            std::copy_n(state.unread.begin(), count, expected.begin());
            after = Bytes(state.unread.begin() + count, state.unread.end());
        }
        const auto pop = [&](SmallRing& target, uint32_t length) {
            return target.pop(taken.data(), length);
        };
        expectChange(ring, state, count, pop, (state.readIndex + count) % capacity, after);
        EXPECT_EQ(taken, expected);
    });
}

// What is unread at each store of a producer's attachment to a ring left in this state.
std::vector<std::optional<Bytes>> unreadAtEachStoreOfSetUp(const State& state) {
    SmallRing::Memory left = {};
    left.initialized = 1;
    left.consumers = 1;
    left.capacity = capacity;
    setUp(left, state);
    Bytes image;
    appendWord(image, 1);
    const auto* const payload = reinterpret_cast<const unsigned char*>(&left);
    image.insert(image.end(), payload, payload + sizeof(left));
    RawSegment("SmallRing").write(0, image);

    std::vector<std::optional<Bytes>> found;
    std::optional<StoreWatch> watch;
    int waits = 0;
    observeSemaphoreCalls([&](SemaphoreMoment moment, const sem_t*) {
        if (moment == SemaphoreMoment::AboutToPost) {
            watch.reset();
        }
        if (moment != SemaphoreMoment::AboutToWait || ++waits != 2) {
            return;  // the count lock; the contents lock comes second
        }
        auto* const object = static_cast<unsigned char*>(mappingOf(segmentInode("SmallRing")));
        const auto* const memory = reinterpret_cast<const SmallRing::Memory*>(object + 4);
        watch.emplace(object, image.size(), [&found, memory] {
            EXPECT_EQ(memory->producers, 0U) << "so the next producer would not set it up again";
            found.push_back(memory->initialized == 1 ? unreadOf(*memory) : std::nullopt);
        });
    });
    const SmallRing ring("SmallRing", false);
    observeSemaphoreCalls(nullptr);
    return found;
}

TEST(SharedMemoryCircularBuffer, setUpNeverMakesTakenElementsUnreadAgainAtAnyStore) {
    { const RawSegment created("SmallRing", 4 + sizeof(SmallRing::Memory)); }
    for (uint32_t readIndex = 0; readIndex < capacity; ++readIndex) {
        for (uint32_t used = 0; used <= capacity; ++used) {
            const State before = {readIndex, pattern(used), 0};
            const auto found = unreadAtEachStoreOfSetUp(before);
            EXPECT_GE(found.size(), 3U);
            for (const auto& unread : found) {
                EXPECT_TRUE(!unread || unread->empty() || unread == before.unread)
                    << "read index " << readIndex << ", " << used << " in use, before store "
                    << &unread - found.data();
            }
        }
    }
}

}  // namespace
}  // namespace vantric_test
