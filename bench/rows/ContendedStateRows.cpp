// A query of the basic state while other processes query it too.
#include <memory>

#include "bench/floors/RecordFloor.h"
#include "bench/support/Contenders.h"
#include "bench/support/Exchange.h"
#include "bench/support/Measurement.h"

namespace vantric_bench {

namespace {

using com_qel::Orvane::Vantric::ModemState;

template <class Query>
void addContended(int processes, const char* role, const char* what, Query query) {
    const std::string row = "state query by " + std::to_string(processes) + " processes";
    addContendedMeasurement(
        row, role, what,
        [=] { return std::make_unique<Contenders>(processes - 1, [query](int) { query(); }); },
        [query](benchmark::State& state, Contenders& /*others*/) mutable {
            constexpr int size = 32;
            return Batch{size, timeTogether(state, size, query)};
        });
}

}  // namespace

void registerRows() {
    static Exchange exchange;
    auto floor = std::make_shared<RecordFloor<ModemState>>("ModemStateShm");
    for (const int processes : {2, 4, 8}) {
        addContended(processes, floorRole, "by hand", [=] {
            ModemState record;
            return floor->read(record) && isFresh(record);
        });
        addContended(processes, productRole, "getConnectivityType", [] {
            int32_t type = 0;
            return exchange.client.getConnectivityType(type) && type != 0;
        });
    }
}

}  // namespace vantric_bench
