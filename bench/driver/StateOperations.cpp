// Queries of the published states, and the floors under them.
#include <string>
#include <vector>

#include "Vantric/StateReader.h"
#include "bench/driver/Operations.h"
#include "bench/driver/Repetition.h"
#include "bench/floors/RecordFloor.h"
#include "bench/support/Exchange.h"
#include "bench/support/InstantSleep.h"

namespace vantric_bench {

namespace {

namespace Vantric = com_qel::Orvane::Vantric;

void nothing() {}

void connectivityType(long count) {
    Exchange exchange;
    int32_t type = 0;
    repeat(
        count, [&] { return exchange.client.getConnectivityType(type); }, nothing);
}

void wifiSsid(long count) {
    Exchange exchange;
    std::string text;
    repeat(
        count, [&] { return exchange.client.getWifiSSID(text); }, nothing);
}

void hostname(long count) {
    Exchange exchange;
    std::string text;
    repeat(
        count, [&] { return exchange.client.getHostname(text); }, nothing);
}

void stateFloor(long count) {
    Exchange exchange;
    RecordFloor<Vantric::ModemState> floor("ModemStateShm");
    Vantric::ModemState record;
    repeat(
        count, [&] { return floor.read(record) && isFresh(record); }, nothing);
}

// One look of a blocking query at its record.
template <class Record, class Segment>
void recordRead(long count) {
    Exchange exchange;
    Vantric::StateReader<Record> reader("not connected", "not published");
    reader.connect(std::make_unique<Segment>());
    Record record;
    repeat(
        count,
        [&] {
            reader.read(record);
            return record.updateCounter != 0;
        },
        nothing);
}

template <class Record>
void recordFloor(const char* segment, long count) {
    Exchange exchange;
    RecordFloor<Record> floor(segment);
    Record record;
    repeat(
        count, [&] { return floor.read(record) && record.updateCounter != 0; }, nothing);
}

// A blocking query whose answer is there at the first look.
template <class Query>
void blockingQuery(long count, int networks, Vantric::ClientServer::ModemCommand request,
                   Query query) {
    static Exchange* server = nullptr;
    Exchange exchange;
    exchange.publishNetworks(networks);
    exchange.commands.expect(static_cast<uint32_t>(request), "");
    server = &exchange;
    whileSleeping = [] { server->bumpUpdateCounters(); };
    repeat(
        count, [&] { return query(exchange.client); },
        [&] {
            if (exchange.commands.takeAll() != batchSize) {
                throw std::runtime_error("a request did not arrive");
            }
        });
    whileSleeping = nullptr;
    server = nullptr;
}

template <int networks>
void listQuery(long count) {
    std::vector<Vantric::WifiInfo> list;
    blockingQuery(count, networks, Vantric::ClientServer::ModemCommand::RequestWifiList,
                  [&](Vantric::ModemClient& client) {
                      return client.getWifiAvailableListBlocking(list, 30) &&
                             list.size() == static_cast<std::size_t>(networks);
                  });
}

void statusQuery(long count) {
    Vantric::ModemStatus status;
    blockingQuery(
        count, 0, Vantric::ClientServer::ModemCommand::RequestModemStatus,
        [&](Vantric::ModemClient& client) { return client.getModemStatusBlocking(status, 60); });
}

}  // namespace

NamedOperations stateOperations() {
    using Vantric::ModemStateExtended;
    using Vantric::WifiInfosList;
    using namespace Vantric::ClientServer;
    return {
        {"floorState", stateFloor},
        {"getConnectivityType", connectivityType},
        {"getWifiSSID", wifiSsid},
        {"getHostname", hostname},
        {"floorExtendedRecord",
         [](long count) { recordFloor<ModemStateExtended>("ModemStateEx", count); }},
        {"extendedRecord", recordRead<ModemStateExtended, SharedMemoryModemStateExtended>},
        {"floorListRecord", [](long count) { recordFloor<WifiInfosList>("ModemWifiList", count); }},
        {"listRecord", recordRead<WifiInfosList, SharedMemoryWifiList>},
        {"statusQuery", statusQuery},
        {"listQuery0", listQuery<0>},
        {"listQuery10", listQuery<10>},
        {"listQuery100", listQuery<100>},
    };
}

}  // namespace vantric_bench
