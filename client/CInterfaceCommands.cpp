#include <chrono>

#include "Vantric/ModemClientC.h"
#include "Vantric/ModemState.h"
#include "Vantric/Utils/ImmortalKeeper.h"
#include "client/Commands.h"
#include "client/Output.h"

namespace vantricprobe {

namespace {

using com_qel::Orvane::Vantric::fieldView;
using com_qel::Orvane::Vantric::keepUntilProcessEnds;
using MonotonicClock = std::chrono::steady_clock;

constexpr uint32_t timeoutSeconds = 60;

int64_t millisecondsSince(MonotonicClock::time_point start) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(MonotonicClock::now() - start)
        .count();
}

// Runs `body` with a connected handle. A handle that cannot connect is reported and, by contract,
// never released.
template <class Body>
void runWithHandle(Body body) {
    const ModemClientHandle handle = modemClientCreate();
    if (!modemClientConnect(handle)) {
        keepUntilProcessEnds(handle);
        writeLine("Failed to connect");
        return;
    }
    body(handle);
    modemClientDisconnect(handle);
    modemClientDestroy(handle);
}

void printStatus(const ModemStatus& status) {
    writeLine("Carrier:\n\tSignal level: ", int64_t{status.carrierSignalLevel},
              "\nWifi:\n\tSignal level: ", int64_t{status.wifiSignalLevel},
              "\n\tSSID:         ", fieldView(status.wifiSsid),
              "\n\tEncryption:   ", fieldView(status.wifiEncryptionName),
              "\n\tIPv4:         ", fieldView(status.ipv4Address),
              "\n\tMAC Address:  ", fieldView(status.macAddress), "\n");
}

}  // namespace

void forgetWifi() {
    runWithHandle([](ModemClientHandle handle) {
        const MonotonicClock::time_point start = MonotonicClock::now();
        if (modemClientForgetWifiBlocking(handle, timeoutSeconds)) {
            writeLine("Successfully forgot the wifi settings after ", millisecondsSince(start),
                      "ms.");
        } else {
            writeLine("Failed to forget wifi");
        }
    });
}

void printExtendedStatus() {
    runWithHandle([](ModemClientHandle handle) {
        ModemStatus status = {};
        const MonotonicClock::time_point start = MonotonicClock::now();
        if (modemClientGetModemStatusBlocking(handle, &status, timeoutSeconds)) {
            const int64_t executionTime = millisecondsSince(start);
            printStatus(status);
            writeLine("Status execution time: ", executionTime, "ms.");
        } else {
            writeLine("Failed to get status from C API wifi");
        }
    });
}

}  // namespace vantricprobe
