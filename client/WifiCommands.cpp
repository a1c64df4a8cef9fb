#include <vector>

#include "client/CommandSupport.h"
#include "client/Commands.h"

namespace vantricprobe {

using com_qel::Orvane::Vantric::encryptionTypeName;
using com_qel::Orvane::Vantric::WifiInfo;

namespace {

void printNetworks(const std::vector<WifiInfo>& networks) {
    writeLine("Available Wifi: ");
    int64_t index = 0;
    for (const WifiInfo& network : networks) {
        writeLine("\t", index, " - ", network.ssid, ", ", int64_t{network.encryptionType}, " (",
                  encryptionTypeName(network.encryptionType), "), ", int64_t{network.signalLevel});
        ++index;
    }
}

}  // namespace

void setWifiName(const std::string& name) {
    runCommand([&](ModemClient& client) {
        std::string current;
        const auto readCurrent = [&] { return client.getWifiSSID(current); };
        readWithRetry(readCurrent, "Failed to get current wifi name");
        writeLine("Current wifi name is: ", current);
        writeLine("Now changing to ", name);
        const auto requestTime =
            whole<std::chrono::microseconds>(timeOf([&] { client.setWifiSSID(name); }));
        const WallClock::duration changeTime = waitForChange(
            {readCurrent, [&] { return current == name; }, "\nFailed to get wifi name",
             "\nTimeout! Modem did not change wifi name to " + name});
        if (current == name) {
            writeLine("\nWifi name changed.");
        }
        writeTimings({{"setWifiSSID: ", requestTime, "us"},
                      {"modem wifi change: ", whole<std::chrono::seconds>(changeTime), "sec"}});
        client.disconnect();
    });
}

void listAvailableWifi() {
    runCommand([](ModemClient& client) {
        std::vector<WifiInfo> networks;
        bool isListed = false;
        const WallClock::duration queryTime = timeOf(
            [&] { isListed = client.getWifiAvailableListBlocking(networks, listTimeoutSeconds); });
        if (isListed) {
            printNetworks(networks);
        } else {
            writeLine("Failed to get the list of available wifi networks.");
        }
        writeTimings({{"getWifiAvailableListBlocking: ",
                       whole<std::chrono::milliseconds>(queryTime), "ms"}});
        client.disconnect();
    });
}

}  // namespace vantricprobe
