#include "bench/support/Exchange.h"

#include <stdexcept>
#include <vector>

#include "tests/support/PublishedServer.h"

namespace vantric_bench {

namespace {

constexpr int32_t secondsOfADay = 86400;

}  // namespace

Exchange::Exchange() {
    auto record = vantric_test::freshState();
    record.timestamp += secondsOfADay;  // the future is never stale
    state.publish(record);
    extendedState.publish(vantric_test::someExtendedState(1));
    publishNetworks(0);
    if (!client.connect()) {
        throw std::runtime_error("the client cannot connect");
    }
}

void Exchange::publishNetworks(int count) {
    std::vector<int32_t> levels(static_cast<std::size_t>(count));
    int32_t level = 0;
    for (int32_t& each : levels) {
        each = level = (level + 37) % 101;  // in no order
    }
    wifiList.publish(vantric_test::wifiListOf(levels, 1));
}

void Exchange::bumpUpdateCounters() {
    ++wifiList.accessor().memory()->record.updateCounter;
    ++extendedState.accessor().memory()->record.updateCounter;
}

}  // namespace vantric_bench
