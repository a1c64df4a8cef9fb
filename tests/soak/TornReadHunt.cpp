#include "tests/soak/TornReadHunt.h"

#include <sched.h>

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdio>
#include <string>

#include "Vantric/ClientServer/SharedMemoryModemState.h"
#include "Vantric/ModemClient.h"
#include "tests/soak/RecordPattern.h"

namespace vantric_soak {

namespace {

using Vantric::ModemClient;
using Vantric::ClientServer::SharedMemoryModemState;
using Vantric::ClientServer::SharedMemoryModemStateExtended;
using Vantric::ClientServer::SharedMemoryWifiList;

constexpr uint32_t mostReaders = 16;
constexpr uint32_t turnsBetweenPauses = 4;  // on average

enum Segment : std::size_t { basicState, extendedState, wifiList, segmentCount };

constexpr std::array<const char*, segmentCount> segmentNames = {"ModemStateShm", "ModemStateEx",
                                                                "ModemWifiList"};

struct SegmentCounts {
    std::atomic<uint64_t> reads{0};
    std::atomic<uint64_t> distinct{0};
};

struct TornReadArea {
    std::atomic<uint32_t> attached{0};
    std::atomic<bool> hasStarted{false};
    std::atomic<bool> hasEnough{false};
    std::atomic<uint64_t> published{0};
    std::array<std::array<SegmentCounts, segmentCount>, mostReaders> readers;

    uint64_t sum(Segment segment, std::atomic<uint64_t> SegmentCounts::*member) const {
        uint64_t total = 0;
        for (const auto& reader : readers) {
            total += reader.at(segment).*member;
        }
        return total;
    }

    uint64_t reads() const {
        return sum(basicState, &SegmentCounts::reads) + sum(extendedState, &SegmentCounts::reads) +
               sum(wifiList, &SegmentCounts::reads);
    }
};

void announceAndAwaitStart(TornReadArea& area) {
    ++area.attached;
    while (!area.hasStarted) {
        sched_yield();
    }
}

void publishAll(TornReadArea& area, uint32_t firstSequence) {
    SharedMemoryModemState state;
    SharedMemoryModemStateExtended extended;
    SharedMemoryWifiList list;
    Vantric::ModemState stateRecord;
    Vantric::ModemStateExtended extendedRecord;
    Vantric::WifiInfosList listRecord;
    const auto publish = [&](uint32_t sequence) {
        fillRecord(stateRecord, sequence);
        state.publish(stateRecord);
        fillRecord(extendedRecord, sequence);
        extended.publish(extendedRecord);
        fillRecord(listRecord, sequence);
        list.publish(listRecord);
    };
    uint32_t sequence = firstSequence;
    publish(sequence);
    announceAndAwaitStart(area);
    while (!area.hasEnough) {
        require(sequence != UINT32_MAX, "the sequence numbers are used up");
        publish(++sequence);
        ++area.published;
    }
}

// Follows the sequence numbers that one reader finds in one segment.
class Sightings {
  public:
    Sightings(Segment segment, SegmentCounts& counts) : segment_(segment), counts_(counts) {}

    void add(bool isWhole, uint32_t sequence) {
        require(isWhole, std::string("a torn copy of ") + segmentNames.at(segment_) +
                             " near record " + std::to_string(sequence));
        require(sequence >= last_, std::string("a reader of ") + segmentNames.at(segment_) +
                                       " saw record " + std::to_string(sequence) + " after " +
                                       std::to_string(last_));
        counts_.reads.fetch_add(1, std::memory_order_relaxed);
        if (sequence != last_) {
            counts_.distinct.fetch_add(1, std::memory_order_relaxed);
        }
        last_ = sequence;
    }

  private:
    Segment segment_;
    SegmentCounts& counts_;
    uint32_t last_ = 0;
};

template <class Layout, class Record>
void readOnce(Layout& layout, Record& record, Sightings& sightings) {
    require(layout.read(record), "a published record could not be read");
    sightings.add(isWhole(record), sequenceOf(record));
}

// Asks the client the question that is due: each getter copies the whole state and hands out a
// part.
void queryOnce(ModemClient& client, uint64_t turn, Sightings& sightings) {
    std::string text;
    int32_t number = 0;
    const auto addText = [&](bool isRead, std::size_t length) {
        require(isRead, "a getter failed");
        const uint32_t sequence = sequenceOf(text);
        sightings.add(text == repeatedDigits(sequence, length), sequence);
    };
    switch (turn % 5) {
        case 0:
            require(client.getConnectivityType(number), "getConnectivityType failed");
            return sightings.add(true, static_cast<uint32_t>(number));
        case 1:
            return addText(client.getWifiSSID(text), sizeof(Vantric::ModemState::wifiSsid) - 1);
        case 2:
            return addText(client.getHostname(text), sizeof(Vantric::ModemState::hostname) - 1);
        case 3:
            return addText(client.getWifiConnectionState(text),
                           sizeof(Vantric::ModemState::wifiConnectionState) - 1);
        default:
            // Two reads: the password comes out of the first, the type out of the second.
            addText(client.getWifiPasswordAndEncryptionType(number, text),
                    sizeof(Vantric::ModemState::wifiPassword) - 1);
            return sightings.add(true, ~static_cast<uint32_t>(number));
    }
}

void readAll(TornReadArea& area, uint32_t reader, uint64_t seed) {
    SharedMemoryModemState state;
    SharedMemoryModemStateExtended extended;
    SharedMemoryWifiList list;
    ModemClient client;
    require(client.connect(), "a reader could not connect");
    Vantric::ModemState stateRecord;
    Vantric::ModemStateExtended extendedRecord;
    Vantric::WifiInfosList listRecord;
    auto& counts = area.readers.at(reader);
    Sightings ofState(basicState, counts[basicState]);
    Sightings ofExtended(extendedState, counts[extendedState]);
    Sightings ofList(wifiList, counts[wifiList]);
    announceAndAwaitStart(area);
    Randomness randomness(seed);
    for (uint64_t turn = reader; !area.hasEnough; ++turn) {
        // Fewer processors than processes: without this a reader would mostly read what nobody
        // could replace meanwhile.
        if (randomness.below(turnsBetweenPauses) == 0) {
            sched_yield();
        }
        queryOnce(client, turn, ofState);
        readOnce(state, stateRecord, ofState);
        readOnce(extended, extendedRecord, ofExtended);
        readOnce(list, listRecord, ofList);
    }
}

}  // namespace

void huntTornReads(const TornReadHuntSize& size, uint64_t seed, Supervision& supervision) {
    require(size.readers <= mostReaders, "too many readers");
    const SharedArea<TornReadArea> area;
    const auto progress = [&] {
        return supervision.progressOf(area->reads(), size.reads, "reads");
    };
    constexpr uint32_t highestStart = 1'000'000'000;
    const uint32_t firstSequence = Randomness(seed).below(highestStart);
    supervision.startAttached(area->attached, [&] { publishAll(*area, firstSequence); });
    for (uint32_t reader = 0; reader < size.readers; ++reader) {
        supervision.startAttached(area->attached,
                                  [&, reader] { readAll(*area, reader, mixed(seed, reader)); });
    }
    area->hasStarted = true;
    // Readers that see one record again and again prove nothing, so the hunt goes on until they
    // have seen enough of them in every segment.
    constexpr uint64_t readsForARecord = 500;
    const auto isEnough = [&] {
        bool sawMany = true;
        for (const Segment segment : {basicState, extendedState, wifiList}) {
            sawMany = sawMany &&
                      area->sum(segment, &SegmentCounts::distinct) >= size.reads / readsForARecord;
        }
        return sawMany && area->reads() >= size.reads;
    };
    supervision.await(isEnough, progress);
    area->hasEnough = true;
    supervision.awaitEnds(progress);

    std::printf("reads: %" PRIu64 " by %u readers while %" PRIu64
                " records were published to each segment, none torn, none out of order; %.1f s\n",
                area->reads(), size.readers, area->published.load(), supervision.seconds());
    for (const Segment segment : {basicState, extendedState, wifiList}) {
        const uint64_t reads = area->sum(segment, &SegmentCounts::reads);
        const uint64_t distinct = area->sum(segment, &SegmentCounts::distinct);
        std::printf("  %-14s %" PRIu64 " reads, %" PRIu64
                    " of a record other than the one before\n",
                    segmentNames.at(segment), reads, distinct);
    }
}

}  // namespace vantric_soak
