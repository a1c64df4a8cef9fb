// The least that turning the published list of networks into the caller's records takes.
#pragma once

#include <algorithm>
#include <cstring>
#include <vector>

#include "Vantric/ModemState.h"
#include "bench/floors/RecordFloor.h"

namespace vantric_bench {

class ListFloor {
  public:
    bool look() { return record_.read(list_); }

    // Strongest first.
    bool convert(std::vector<com_qel::Orvane::Vantric::WifiInfo>& networks) {
        networks.resize(static_cast<std::size_t>(list_.count));
        for (std::size_t index = 0; index < networks.size(); ++index) {
            const auto& entry = list_.entries[index];
            auto& network = networks[index];
            std::memset(&network, 0, sizeof(network));
            std::memcpy(network.ssid, entry.ssid, strnlen(entry.ssid, sizeof(entry.ssid)));
            network.encryptionType = entry.encryptionType;
            std::memcpy(network.encryptionName, encryptionName, sizeof(encryptionName));
            network.signalLevel = entry.signalLevel;
        }
        std::sort(networks.begin(), networks.end(), [](const auto& left, const auto& right) {
            return left.signalLevel > right.signalLevel;
        });
        return true;
    }

  private:
    static constexpr char encryptionName[] = "WPA+WPA2 (PSK)";

    RecordFloor<com_qel::Orvane::Vantric::WifiInfosList> record_{"ModemWifiList"};
    com_qel::Orvane::Vantric::WifiInfosList list_ = {};
};

}  // namespace vantric_bench
