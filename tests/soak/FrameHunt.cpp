#include "tests/soak/FrameHunt.h"

#include <sched.h>

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdio>
#include <string>
#include <vector>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "tests/soak/FramePattern.h"
#include "tests/soak/RingWitness.h"

namespace vantric_soak {

namespace {

using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands;

// What one end says about one producer's frames. The fingerprint tells sets of frames apart.
struct Count {
    std::atomic<uint64_t> frames{0};
    std::atomic<uint64_t> fingerprint{0};

    void add(uint32_t sequence) {
        frames.fetch_add(1, std::memory_order_relaxed);
        fingerprint.fetch_add(Randomness(sequence).next(), std::memory_order_relaxed);
    }
};

struct ProducerCounts {
    std::atomic<uint64_t> sent{0};
    std::atomic<uint64_t> dropped{0};
    Count written;    // by the producer
    Count delivered;  // by the consumer
    std::atomic<bool> hasEnded{false};
};

struct FrameHuntArea {
    std::atomic<uint32_t> attached{0};
    std::atomic<bool> hasStarted{false};
    std::atomic<bool> hasEnough{false};
    std::atomic<uint64_t> delivered{0};
    std::atomic<uint64_t> deliveredBytes{0};
    std::atomic<uint64_t> refused{0};  // those of the delivered that did not fit the buffer
    std::array<ProducerCounts, FramePattern::mostProducers> producers;
};

std::string textOf(const FrameName& name) {
    return "frame " + std::to_string(name.sequence) + " of producer " +
           std::to_string(name.producer);
}

void announceAndAwaitStart(FrameHuntArea& area) {
    ++area.attached;
    while (!area.hasStarted) {
        sched_yield();
    }
}

// Lets larger frames have their chance in a ring that small ones keep nearly full.
void awaitRoom(const RingWitness& witness, uint32_t frameSize) {
    constexpr int mostLooks = 300;
    constexpr uint32_t alwaysTried = 200;
    for (int look = 0;
         frameSize > alwaysTried && look < mostLooks && witness.state().free() < frameSize;
         ++look) {
        sched_yield();
    }
}

void produce(uint32_t producer, const FramePattern& pattern, FrameHuntArea& area) {
    SharedMemoryModemCommands channel(false);
    announceAndAwaitStart(area);
    RingWitness witness;
    ProducerCounts& counts = area.producers.at(producer);
    std::vector<unsigned char> payload;
    FrameName name = {producer, 0, false};
    for (; !area.hasEnough; ++name.sequence) {
        require(name.sequence < FramePattern::mostFrames, "the sequence numbers are used up");
        pattern.fillPayload(name, payload);
        const auto size = static_cast<uint32_t>(payload.size());
        const uint32_t frameSize = size + frameHeaderSize;
        if (name.sequence % 2 == 0) {
            awaitRoom(witness, frameSize);
        }

        witness.restart();
        require(channel.enqueue(pattern.command(name), payload.data(), size),
                "enqueue returned false");
        ++counts.sent;
        require(witness.holds().size() == 1, "enqueue took the ring's lock other than once");
        const RingWitness::Hold& hold = witness.holds().front();
        if (frameSize <= hold.before.free()) {
            require(hold.after == hold.before.afterWriting(frameSize),
                    textOf(name) + " had room but was not written as one run");
            counts.written.add(name.sequence);
        } else {
            require(hold.after == hold.before,
                    textOf(name) + " had no room but the ring was changed");
            ++counts.dropped;
            sched_yield();
        }
    }
    counts.hasEnded = true;
}

class Consumer {
  public:
    Consumer(const FramePattern& pattern, FrameHuntArea& area)
        : pattern_(pattern), area_(area), buffer_(consumerBufferSize) {}

    // Takes what is at the front of the ring; false when the ring was empty.
    bool take() {
        witness_.restart();
        uint32_t command = 0;
        uint32_t size = consumerBufferSize;
        const bool wasTaken = channel_.dequeue(command, buffer_.data(), &size);
        require(!witness_.holds().empty(), "dequeue did not take the ring's lock");
        const RingState before = witness_.holds().front().before;
        if (before.used() == 0) {
            require(!wasTaken, "an empty ring yielded a frame");
            requireReads({0});
            return false;
        }
        require(before.used() >= frameHeaderSize, "there is a part of a header in the ring");
        const FrameName name = pattern_.name(witness_.holds().front().frontCommand);
        if (owedHeaders_ != 0) {
            require(wasTaken && command == pattern_.command(owed_) && size == consumerBufferSize,
                    "a refused payload did not come as headers: " + textOf(owed_));
            requireReads({frameHeaderSize});
            --owedHeaders_;
            return true;
        }
        require(!name.isNested && name.producer < area_.producers.size(),
                "the ring holds something that nobody sent");
        takeFrame(name, wasTaken, command, size);
        return true;
    }

  private:
    void takeFrame(const FrameName& name, bool wasTaken, uint32_t command, uint32_t size) {
        pattern_.fillPayload(name, expected_);
        const auto expectedSize = static_cast<uint32_t>(expected_.size());
        if (FramePattern::isRefused(expectedSize)) {
            require(!wasTaken && size == consumerBufferSize,
                    textOf(name) + " does not fit the buffer but was not refused");
            requireReads({frameHeaderSize});
            owed_ = {name.producer, name.sequence, true};
            owedHeaders_ = expectedSize / frameHeaderSize;
            ++area_.refused;
        } else {
            require(wasTaken, textOf(name) + " was not delivered");
            require(command == pattern_.command(name), textOf(name) + " has a wrong identifier");
            if (expectedSize == 0) {
                require(size == consumerBufferSize, "an empty frame has changed the size");
                requireReads({frameHeaderSize});
            } else {
                require(size == expectedSize, textOf(name) + " has a wrong length");
                requireReads({frameHeaderSize, expectedSize});
            }
            require(std::equal(expected_.begin(), expected_.end(), buffer_.begin()),
                    textOf(name) + " has a wrong payload");
        }
        uint32_t& next = nextSequence_.at(name.producer);
        require(name.sequence >= next, textOf(name) + " came twice or out of order");
        next = name.sequence + 1;
        area_.producers.at(name.producer).delivered.add(name.sequence);
        area_.deliveredBytes += expectedSize;
        ++area_.delivered;
    }

    // The holds of the lock took these numbers of bytes out of the ring.
    void requireReads(const std::vector<uint32_t>& counts) const {
        require(witness_.holds().size() == counts.size(),
                "dequeue took the lock too often or not often enough");
        for (std::size_t index = 0; index < counts.size(); ++index) {
            const RingWitness::Hold& hold = witness_.holds()[index];
            const RingState expected =
                counts[index] == 0 ? hold.before : hold.before.afterReading(counts[index]);
            require(hold.after == expected, "dequeue has left a ring that follows from nothing");
        }
    }

    const FramePattern& pattern_;
    FrameHuntArea& area_;
    SharedMemoryModemCommands channel_{true};
    RingWitness witness_;
    std::vector<unsigned char> buffer_;
    std::vector<unsigned char> expected_;
    std::array<uint32_t, FramePattern::mostProducers> nextSequence_ = {};
    FrameName owed_;
    uint32_t owedHeaders_ = 0;
};

void consume(const FramePattern& pattern, const FrameHuntSize& size, FrameHuntArea& area) {
    Consumer consumer(pattern, area);
    announceAndAwaitStart(area);
    const auto allEnded = [&] {
        return std::all_of(area.producers.begin(), area.producers.begin() + size.producers,
                           [](const ProducerCounts& counts) { return counts.hasEnded.load(); });
    };
    bool isLastRound = false;
    while (true) {
        while (consumer.take()) {
            area.hasEnough = area.delivered >= size.frames;
        }
        if (isLastRound) {
            return;
        }
        isLastRound = allEnded();
        sched_yield();
    }
}

void checkTotals(const FrameHuntArea& area) {
    for (const ProducerCounts& counts : area.producers) {
        require(counts.written.frames == counts.delivered.frames &&
                    counts.written.fingerprint == counts.delivered.fingerprint,
                "the frames that were written are not those that were delivered");
        require(counts.delivered.frames + counts.dropped == counts.sent,
                "delivered and dropped do not add up to sent");
    }
}

}  // namespace

void huntFrames(const FrameHuntSize& size, uint64_t seed, Supervision& supervision) {
    const SharedArea<FrameHuntArea> area;
    const FramePattern pattern(seed);
    const auto progress = [&] {
        return supervision.progressOf(area->delivered, size.frames, "frames");
    };
    supervision.startAttached(area->attached, [&] { consume(pattern, size, *area); });
    for (uint32_t producer = 0; producer < size.producers; ++producer) {
        supervision.startAttached(area->attached,
                                  [&, producer] { produce(producer, pattern, *area); });
    }
    area->hasStarted = true;
    supervision.awaitEnds(progress);
    checkTotals(*area);

    uint64_t sent = 0;
    uint64_t dropped = 0;
    for (const ProducerCounts& counts : area->producers) {
        sent += counts.sent;
        dropped += counts.dropped;
    }
    require(area->delivered >= size.frames, "too few frames were delivered");
    require(dropped != 0 && area->refused != 0, "the hunt has dropped or refused nothing");
    std::printf("frames: %" PRIu64 " sent by %u producers, %" PRIu64 " delivered (%" PRIu64
                " MB; %" PRIu64 " of them refused and read as headers), %" PRIu64
                " dropped, each by a ring without room for it; %.1f s\n",
                sent, size.producers, area->delivered.load(), area->deliveredBytes / 1'000'000,
                area->refused.load(), dropped, supervision.seconds());
}

}  // namespace vantric_soak
