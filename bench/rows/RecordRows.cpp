// The two records that the blocking queries look at: one look.
#include <memory>

#include "Vantric/StateReader.h"
#include "bench/floors/RecordFloor.h"
#include "bench/support/Exchange.h"
#include "bench/support/Measurement.h"

namespace vantric_bench {

namespace {

namespace Vantric = com_qel::Orvane::Vantric;

template <class Record, class Segment>
void addRecord(const std::string& row, const char* segment) {
    auto record = std::make_shared<Record>();
    auto floor = std::make_shared<RecordFloor<Record>>(segment);
    addOperation(row, floorRole, "by hand",
                 [=] { return floor->read(*record) && record->updateCounter != 0; });

    auto reader = std::make_shared<Vantric::StateReader<Record>>("not connected", "not published");
    reader->connect(std::make_unique<Segment>());
    addOperation(row, productRole, "one look", [=] {
        reader->read(*record);
        return record->updateCounter != 0;
    });
}

}  // namespace

void registerRows() {
    using namespace Vantric::ClientServer;
    static const Exchange exchange;
    addRecord<Vantric::ModemStateExtended, SharedMemoryModemStateExtended>(
        "extended record (156 bytes)", "ModemStateEx");
    addRecord<Vantric::WifiInfosList, SharedMemoryWifiList>("list record (4108 bytes)",
                                                            "ModemWifiList");
}

}  // namespace vantric_bench
