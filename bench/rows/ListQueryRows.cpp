// The list query without its waiting, by the number of networks: the answer is there at the first
// look.
#include <memory>
#include <vector>

#include "bench/floors/EnqueueFloor.h"
#include "bench/floors/ListFloor.h"
#include "bench/support/Exchange.h"
#include "bench/support/InstantSleep.h"
#include "bench/support/Measurement.h"

namespace vantric_bench {

namespace {

using com_qel::Orvane::Vantric::WifiInfo;
using com_qel::Orvane::Vantric::ClientServer::ModemCommand;

constexpr auto request = static_cast<uint32_t>(ModemCommand::RequestWifiList);

Exchange& exchange() {
    static Exchange instance;
    return instance;
}

template <class Query>
void addQuery(int networks, const char* role, const char* what, Query query) {
    constexpr int size = 32;
    const std::string row = "list query (" + std::to_string(networks) + " networks)";
    addMeasurement(row, role, what, [=](benchmark::State& state) mutable {
        exchange().publishNetworks(networks);
        auto list = std::vector<WifiInfo>();
        auto queryOnce = [&] {
            return query(list) && list.size() == static_cast<std::size_t>(networks);
        };
        const int succeeded = timeTogether(state, size, queryOnce);
        return Batch{size, exchange().commands.takeAll() == size ? succeeded : 0};
    });
}

}  // namespace

void registerRows() {
    exchange().commands.expect(request, "");
    whileSleeping = [] { exchange().bumpUpdateCounters(); };
    auto floor = std::make_shared<ListFloor>();
    auto channel = std::make_shared<EnqueueFloor>();
    for (const int networks : {0, 10, 100}) {
        addQuery(networks, floorRole, "by hand", [=](std::vector<WifiInfo>& list) {
            return floor->look() && channel->enqueue(request, nullptr, 0) && floor->look() &&
                   floor->convert(list);
        });
        addQuery(networks, productRole, "getWifiAvailableListBlocking",
                 [](std::vector<WifiInfo>& list) {
                     return exchange().client.getWifiAvailableListBlocking(list, 30);
                 });
    }
}

}  // namespace vantric_bench
