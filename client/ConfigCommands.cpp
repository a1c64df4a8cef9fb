#include "client/CommandSupport.h"
#include "client/Commands.h"

namespace vantricprobe {

namespace {

// The host name stands for the configuration: it is what a user sees of it.
std::string readHostname(ModemClient& client) {
    std::string hostname;
    readWithRetry([&] { return client.getHostname(hostname); }, "Failed to get current HostName");
    return hostname;
}

// Any host name ends the wait: that the state can be read again is all that is asked for.
void changeConfig(ModemClient& client, const std::string& fileName) {
    writeLine("Now changing to ", fileName);
    const auto requestTime =
        whole<std::chrono::microseconds>(timeOf([&] { client.setConfig(fileName); }));
    std::string hostname;
    const WallClock::duration changeTime = waitForChange(
        {[&] { return client.getHostname(hostname); }, [] { return true; },
         "\nFailed to get HostName", "\nTimeout! Modem did not change config name to " + fileName});
    writeTimings({{"setConfig: ", requestTime, "us"},
                  {"modem config change: ", whole<std::chrono::seconds>(changeTime), "sec"}});
}

}  // namespace

void setConfig(const std::string& fileName) {
    runCommand([&](ModemClient& client) {
        writeLine("Current HostName is: ", readHostname(client));
        changeConfig(client, fileName);
        client.disconnect();
    });
}

void setConfigKeepWifi(const std::string& fileName) {
    runCommand([&](ModemClient& client) {
        const std::string hostname = readHostname(client);
        // Settings that cannot be read are written back as they stand here.
        std::string ssid;
        int32_t encryptionType = 0;
        std::string password;
        client.getWifiSSID(ssid);
        client.getWifiPasswordAndEncryptionType(encryptionType, password);
        writeLine("Current config name is: ", hostname);
        changeConfig(client, fileName);
        client.setWifiSSID(ssid);
        client.setWifiPasswordAndEncryptionType(encryptionType, password);
        client.disconnect();
    });
}

}  // namespace vantricprobe
