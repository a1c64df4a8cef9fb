// A query of the basic state.
#include <memory>
#include <string>

#include "bench/floors/RecordFloor.h"
#include "bench/peers/BoostState.h"
#include "bench/peers/BusState.h"
#include "bench/peers/FileState.h"
#include "bench/peers/SocketState.h"
#include "bench/support/Exchange.h"
#include "bench/support/Measurement.h"
#include "tests/support/PublishedServer.h"

namespace vantric_bench {

namespace {

using com_qel::Orvane::Vantric::ModemState;

constexpr const char* row = "state query (141 bytes)";

template <class Peer>
void addPeer(const std::string& what, const ModemState& published) {
    auto peer = std::make_shared<Peer>(published);
    auto record = std::make_shared<ModemState>();
    addOperation(row, peerRole, what, [=] {
        return peer->read(*record) && record->connectivityType == published.connectivityType;
    });
}

}  // namespace

void registerRows() {
    // The peers' processes come first: they are no clients of the exchange.
    const ModemState published = vantric_test::freshState();
    addPeer<BoostState>("Boost.Interprocess mutex and memory", published);
    addPeer<FileState>("file in a memory file system", published);
    addPeer<SocketState>("Unix socket round trip", published);
    addPeer<BusState>("D-Bus property Get", published);

    static Exchange exchange;
    auto floor = std::make_shared<RecordFloor<ModemState>>("ModemStateShm");
    auto record = std::make_shared<ModemState>();
    addOperation(row, floorRole, "by hand",
                 [=] { return floor->read(*record) && isFresh(*record); });
    addOperation(row, productRole, "getConnectivityType", [] {
        int32_t type = 0;
        return exchange.client.getConnectivityType(type) && type != 0;
    });
    auto text = std::make_shared<std::string>();
    addOperation(row, productRole, "getWifiSSID",
                 [=] { return exchange.client.getWifiSSID(*text) && !text->empty(); });
}

}  // namespace vantric_bench
