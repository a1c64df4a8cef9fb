// Scans for networks, joins the strongest one that needs no password, and waits until the modem's
// state shows it.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "Vantric/ModemClient.h"

using com_qel::Orvane::Vantric::EncryptionType;
using com_qel::Orvane::Vantric::ModemClient;
using com_qel::Orvane::Vantric::WifiInfo;

namespace {

constexpr uint32_t scanTimeoutSeconds = 30;
constexpr std::chrono::seconds joinTimeout{30};

bool isOpen(const WifiInfo& network) {
    return network.encryptionType == static_cast<int32_t>(EncryptionType::None);
}

// The library has no notifications: clients poll the published state.
bool awaitNetwork(ModemClient& client, const std::string& name) {
    const auto deadline = std::chrono::steady_clock::now() + joinTimeout;
    std::string current;
    while (std::chrono::steady_clock::now() < deadline) {
        if (client.getWifiSSID(current) && current == name) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    return false;
}

bool joinStrongest(ModemClient& client) {
    std::vector<WifiInfo> networks;
    if (!client.connect() || !client.getWifiAvailableListBlocking(networks, scanTimeoutSeconds)) {
        std::fputs("no list of networks\n", stderr);
        return false;
    }
    for (const WifiInfo& network : networks) {
        std::printf("in range: %s, %s, %d\n", network.ssid, network.encryptionName,
                    network.signalLevel);
    }
    const auto open = std::find_if(networks.begin(), networks.end(), isOpen);
    if (open == networks.end()) {
        std::fputs("no network without password\n", stderr);
        return false;
    }
    const std::string name = open->ssid;
    if (!client.setWifiConnection(name, open->encryptionType, "") || !awaitNetwork(client, name)) {
        std::fprintf(stderr, "cannot join %s\n", name.c_str());
        return false;
    }
    std::printf("joined: %s\n", name.c_str());
    return true;
}

}  // namespace

int main() {
    ModemClient client;
    return joinStrongest(client) ? EXIT_SUCCESS : EXIT_FAILURE;
}
