#include "Vantric/ClientServer/SharedMemoryModemState.h"

namespace com_qel::Orvane::Vantric::ClientServer {

namespace {

constexpr uint32_t layoutVersion = 1;

}  // namespace

static_assert(sizeof(SharedMemoryModemState::Layout) == 149);
static_assert(sizeof(SharedMemoryModemStateExtended::Layout) == 164);
static_assert(sizeof(SharedMemoryWifiList::Layout) == 4116);

SharedMemoryModemState::SharedMemoryModemState()
    : SharedMemoryLayout("ModemStateShm", layoutVersion) {}

SharedMemoryModemStateExtended::SharedMemoryModemStateExtended()
    : SharedMemoryLayout("ModemStateEx", layoutVersion) {}

SharedMemoryWifiList::SharedMemoryWifiList() : SharedMemoryLayout("ModemWifiList", layoutVersion) {}

}  // namespace com_qel::Orvane::Vantric::ClientServer
