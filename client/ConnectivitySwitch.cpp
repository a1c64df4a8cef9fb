#include "client/CommandSupport.h"
#include "client/Commands.h"

namespace vantricprobe {

using com_qel::Orvane::Vantric::ConnectivityType;
using com_qel::Orvane::Vantric::connectivityTypeName;

void switchConnectivity(ConnectivityType targetType, AfterRequest then) {
    runCommand([=](ModemClient& client) {
        const auto target = static_cast<int32_t>(targetType);
        int32_t current = 0;
        const auto readCurrent = [&] { return client.getConnectivityType(current); };
        readWithRetry(readCurrent, "Failed to get connectivity type");
        writeLine("Current connectivity is: ", connectivityTypeName(current));

        // Both branches below begin by ending this line.
        write("Now changing to ");
        write(connectivityTypeName(target));
        const auto requestTime =
            whole<std::chrono::microseconds>(timeOf([&] { client.setConnectivityType(target); }));
        if (then == AfterRequest::Return) {
            writeTimings({{"setConnectivityType: ", requestTime, "us"}});
            client.disconnect();
            return;
        }

        writeLine("Command sent, waiting for change to be effective (max 5 minutes).");
        const WallClock::duration changeTime = waitForChange(
            {readCurrent, [&] { return current == target; }, "\nFailed to get connectivity type",
             "\nTimeout! Modem did not switch to " + connectivityTypeName(target)});
        if (current == target) {
            writeLine("\nConnectivity changed.");
        }
        writeTimings(
            {{"setConnectivityType: ", requestTime, "us"},
             {"modem connectivity change: ", whole<std::chrono::seconds>(changeTime), "sec"}});
        client.disconnect();
    });
}

}  // namespace vantricprobe
