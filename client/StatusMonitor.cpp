#include <vector>

#include "client/CommandSupport.h"
#include "client/Commands.h"

namespace vantricprobe {

namespace {

using namespace std::chrono_literals;
using com_qel::Orvane::Vantric::connectivityTypeName;
using com_qel::Orvane::Vantric::WifiInfo;

constexpr std::chrono::seconds cyclePause = 5s;
constexpr const char* ruler = "========================================================";

void printCycle(ModemClient& client) {
    const WallClock::time_point start = WallClock::now();
    int32_t connectivityType = 0;
    if (!client.getConnectivityType(connectivityType)) {
        writeLine("Failed to get connectivity type");
    }
    std::string ssid;
    if (!client.getWifiSSID(ssid)) {
        writeLine("Failed to get Wifi SSID");
    }
    std::vector<WifiInfo> list;
    if (!client.getWifiAvailableListBlocking(list, listTimeoutSeconds)) {
        writeLine("Failed to get Wifi available list");
    }
    std::string hostname;
    if (!client.getHostname(hostname)) {
        writeLine("Failed to get HostName");
    }
    writeLine(ruler);
    writeLine("Execution time: ", whole<std::chrono::milliseconds>(WallClock::now() - start),
              " ms.");
    writeLine("Connectivity: ", connectivityTypeName(connectivityType));
    writeLine("Wifi SSID: ", ssid);
    writeLine("HostName: ", hostname);
    writeLine(ruler);
    endLine();
}

}  // namespace

void monitorStatus() {
    runCommand([](ModemClient& client) {
        for (;;) {
            printCycle(client);
            sleepFor(cyclePause);
        }
    });
}

}  // namespace vantricprobe
