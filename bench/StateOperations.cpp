// Queries of the published records, and the floors under them.
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "Vantric/StateReader.h"
#include "bench/Exchange.h"
#include "bench/Operation.h"
#include "bench/floors/RecordFloor.h"

namespace vantric_bench {

namespace {

namespace Vantric = com_qel::Orvane::Vantric;
using Vantric::ModemState;
using Vantric::WifiInfosList;

constexpr const char* listRow = "list record (4108 bytes)";

bool queryConnectivityType() {
    int32_t type = 0;
    return exchange().client.getConnectivityType(type) && type != 0;
}

// With one system call, one allocation and some hundred instructions too many.
bool queryWithPlantedSlowdown() {
    static_cast<void>(getppid());
    void* volatile memory = std::malloc(1);
    std::free(memory);
    for (volatile int round = 0; round < 100; round = round + 1) {
    }
    return queryConnectivityType();
}

Repetition stateFloor() {
    exchange();
    auto floor = std::make_shared<RecordFloor<ModemState>>("ModemStateShm");
    auto record = std::make_shared<ModemState>();
    return repeat([=] { return floor->read(*record) && isFresh(*record); });
}

Repetition wifiSsid() {
    auto text = std::make_shared<std::string>();
    return repeat([=] { return exchange().client.getWifiSSID(*text) && !text->empty(); });
}

Repetition listFloor() {
    exchange();
    auto floor = std::make_shared<RecordFloor<WifiInfosList>>("ModemWifiList");
    auto record = std::make_shared<WifiInfosList>();
    return repeat([=] { return floor->read(*record) && record->count != 0; });
}

Repetition listRecord() {
    exchange();
    auto record = std::make_shared<WifiInfosList>();
    auto reader = std::make_shared<Vantric::StateReader<WifiInfosList>>("not connected", "empty");
    reader->connect(std::make_unique<Vantric::ClientServer::SharedMemoryWifiList>());
    return repeat([=] {
        reader->read(*record);
        return record->count != 0;
    });
}

}  // namespace

Operations stateOperations() {
    return {
        {stateRow, floorRole, "floorState", stateFloor},
        {stateRow, productRole, "getConnectivityType",
         [] { return repeat(queryConnectivityType); }},
        {stateRow, productRole, "getWifiSSID", wifiSsid},
        {listRow, floorRole, "floorListRecord", listFloor},
        {listRow, productRole, "listRecord", listRecord},
        {stateRow, plantedRole, "plantedSlowdown", [] { return repeat(queryWithPlantedSlowdown); }},
    };
}

}  // namespace vantric_bench
