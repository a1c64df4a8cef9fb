// A writer and readers of the three records: a reader gets whole records only, never an older one
// after a newer one.
#include <gtest/gtest.h>
#include <sched.h>

#include <array>
#include <cstring>

#include "Vantric/ClientServer/SharedMemoryModemState.h"
#include "tests/soak/Workers.h"

namespace vantric_soak {
namespace {

using namespace com_qel::Orvane::Vantric;
using ClientServer::SharedMemoryModemState;
using ClientServer::SharedMemoryModemStateExtended;
using ClientServer::SharedMemoryWifiList;

constexpr uint32_t readerCount = 2;
constexpr uint32_t enoughRecords = 100;  // different ones, seen by each reader in each segment

using Counts = std::array<std::atomic<uint32_t>, readerCount>;

struct ReadsArea {
    Counts state;
    Counts extended;
    Counts list;

    bool isEnough() const {
        for (const Counts* counts : {&state, &extended, &list}) {
            for (const auto& count : *counts) {
                if (count < enoughRecords) {
                    return false;
                }
            }
        }
        return true;
    }
};

// The sequence number, then bytes that all change with it.
template <class Record>
Record recordOf(uint32_t sequence) {
    unsigned char bytes[sizeof(Record)];
    std::memset(bytes, static_cast<int>(mixed(sequence) % 256), sizeof(bytes));
    std::memcpy(bytes, &sequence, sizeof(sequence));
    Record record;
    std::memcpy(&record, bytes, sizeof(record));
    return record;
}

template <class Segment, class Record>
class Reader {
  public:
    explicit Reader(std::atomic<uint32_t>& count) : count_(count) {}

    void read() {
        Record record;
        require(segment_.read(record), "a published record could not be read");
        uint32_t sequence = 0;
        std::memcpy(&sequence, &record, sizeof(sequence));
        const auto expected = recordOf<Record>(sequence);
        require(std::memcmp(&record, &expected, sizeof(record)) == 0, "a record is torn");
        require(sequence >= last_, "a reader got an older record after a newer one");
        count_ += sequence != last_ ? 1 : 0;
        last_ = sequence;
    }

  private:
    Segment segment_;
    std::atomic<uint32_t>& count_;
    uint32_t last_ = 0;
};

void publish(Workers& workers) {
    SharedMemoryModemState state;
    SharedMemoryModemStateExtended extended;
    SharedMemoryWifiList list;
    uint32_t sequence = 0;
    const auto publishNext = [&] {
        ++sequence;
        state.publish(recordOf<ModemState>(sequence));
        extended.publish(recordOf<ModemStateExtended>(sequence));
        list.publish(recordOf<WifiInfosList>(sequence));
    };
    publishNext();
    workers.attached();
    while (workers.goesOn()) {
        publishNext();
    }
}

void readAll(uint32_t reader, Workers& workers, ReadsArea& area) {
    Reader<SharedMemoryModemState, ModemState> state(area.state.at(reader));
    Reader<SharedMemoryModemStateExtended, ModemStateExtended> extended(area.extended.at(reader));
    Reader<SharedMemoryWifiList, WifiInfosList> list(area.list.at(reader));
    workers.attached();
    for (uint32_t turn = 0; workers.goesOn(); ++turn) {
        state.read();
        extended.read();
        list.read();
        // With fewer processors than processes, a reader would mostly read one record again.
        if (mixed(turn) % 4 == 0) {
            sched_yield();
        }
    }
}

TEST(Reads, areNeverTorn) {
    Workers workers;
    const SharedArea<ReadsArea> area;
    workers.start([&] { publish(workers); });
    for (uint32_t reader = 0; reader < readerCount; ++reader) {
        workers.start([&, reader] { readAll(reader, workers, *area); });
    }
    EXPECT_TRUE(workers.work([&] { return area->isEnough(); }));
}

}  // namespace
}  // namespace vantric_soak
