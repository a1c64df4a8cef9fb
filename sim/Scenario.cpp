#include "sim/Scenario.h"

#include "sim/RecordFields.h"

namespace vantric_sim {

namespace {

using com_qel::Orvane::Vantric::ConnectivityType;
using com_qel::Orvane::Vantric::EncryptionType;
using com_qel::Orvane::Vantric::encryptionTypeName;

WifiListEntry network(const char* ssid, EncryptionType encryptionType, int32_t signalLevel) {
    WifiListEntry entry = {};
    setText(entry.ssid, ssid);
    entry.encryptionType = static_cast<int32_t>(encryptionType);
    entry.signalLevel = signalLevel;
    return entry;
}

}  // namespace

Scenario::Scenario()
    : state(),
      extended(),
      networks({network("guest", EncryptionType::None, 35),
                network("home", EncryptionType::Wpa2Psk, 72),
                network("office", EncryptionType::WpaWpa2Enterprise, 58)}) {
    const auto encryptionType = static_cast<int32_t>(EncryptionType::Wpa2Psk);

    state.connectivityType = static_cast<int32_t>(ConnectivityType::Carrier);
    setText(state.wifiSsid, "home");
    setText(state.wifiPassword, "home password");
    state.wifiEncryptionType = encryptionType;
    setText(state.hostname, "modem");
    setText(state.wifiConnectionState, "N/A");

    extended.carrierSignalLevel = 21;
    setText(extended.wifiSsid, "home");
    extended.wifiEncryptionType = encryptionType;
    setText(extended.wifiEncryptionName, encryptionTypeName(encryptionType));
    extended.wifiSignalLevel = 72;
    setText(extended.ipv4Address, "192.168.1.20");
    setText(extended.macAddress, "02:00:00:12:34:56");
    extended.updateCounter = 1;
}

}  // namespace vantric_sim
