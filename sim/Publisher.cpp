#include "sim/Publisher.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <mutex>

#include "Vantric/Utils/MultiProcessLock.h"

namespace vantric_sim {

namespace {

using com_qel::Orvane::Vantric::WifiInfosList;
using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemState;
using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemStateExtended;
using com_qel::Orvane::Vantric::ClientServer::SharedMemoryWifiList;

constexpr uint32_t rightVersion = 1;

// Any int32 may be a counter's initial value, the largest included.
int32_t successor(int32_t counter) {
    return static_cast<int32_t>(static_cast<uint32_t>(counter) + 1);
}

WifiInfosList listOf(const std::vector<WifiListEntry>& networks, int32_t updateCounter) {
    WifiInfosList list = {};
    const std::size_t count = std::min(networks.size(), std::size(list.entries));
    std::copy_n(networks.begin(), count, std::begin(list.entries));
    list.count = static_cast<int32_t>(count);
    list.updateCounter = updateCounter;
    return list;
}

// The record and a faulty header go out in one hold of the lock: no reader ever sees the record
// after a right header.
template <class Layout, class Record>
void write(Layout& layout, const Record& record, const SegmentFaults& faults, bool isReadable) {
    if (faults.frozen) {
        return;
    }
    const bool isValid = isReadable && !faults.invalid;
    if (isValid && !faults.version) {
        layout.publish(record);
        return;
    }
    const std::lock_guard guard(layout.accessor().lock());
    auto* memory = layout.accessor().memory();
    std::memcpy(static_cast<void*>(&memory->record), &record, sizeof(record));
    memory->version = faults.version.value_or(rightVersion);
    memory->valid = isValid ? 1 : 0;
}

}  // namespace

struct Publisher::Segments {
    SharedMemoryModemState state;
    SharedMemoryModemStateExtended extended;
    SharedMemoryWifiList networks;
};

Publisher::Publisher(const Scenario& scenario, Faults& faults)
    : state(scenario.state),
      extended(scenario.extended),
      networksInRange(scenario.networks),
      faults_(faults),
      foundNetworks_(listOf(scenario.networks, 1)) {}

Publisher::~Publisher() = default;

void Publisher::attach() {
    segments_ = std::make_unique<Segments>();
    publishAll();
}

void Publisher::detach() {
    segments_.reset();
}

void Publisher::publishState() {
    using std::chrono::seconds;
    if (!segments_) {
        return;
    }
    const auto now = std::chrono::floor<seconds>(std::chrono::system_clock::now());
    state.timestamp = static_cast<int32_t>(now.time_since_epoch().count() - faults_.timestampAge);
    write(segments_->state, state, faults_.of(Segment::State), configurationsLoading == 0);
}

void Publisher::publishExtended() {
    if (segments_) {
        write(segments_->extended, extended, faults_.of(Segment::Extended), true);
    }
}

void Publisher::publishNetworks() {
    if (segments_) {
        write(segments_->networks, foundNetworks_, faults_.of(Segment::Networks), true);
    }
}

void Publisher::publishAll() {
    publishState();
    publishExtended();
    publishNetworks();
}

void Publisher::scan() {
    foundNetworks_ = listOf(networksInRange, successor(foundNetworks_.updateCounter));
    publishNetworks();
}

void Publisher::refreshExtended() {
    extended.updateCounter = successor(extended.updateCounter);
    publishExtended();
}

void Publisher::dieHoldingLock(Segment segment) {
    // In the order of Segment.
    constexpr const char* locks[] = {"ModemStateShmLock", "ModemStateExLock", "ModemWifiListLock",
                                     "ModemCommandsShmLock"};
    if (!segments_) {
        attach();
    }
    com_qel::Orvane::Vantric::ClientServer::MultiProcessLock lock(
        locks[static_cast<std::size_t>(segment)]);
    lock.lock();
    kill(getpid(), SIGKILL);
    std::abort();  // not reached: no process survives SIGKILL
}

}  // namespace vantric_sim
