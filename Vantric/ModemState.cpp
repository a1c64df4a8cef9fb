#include "Vantric/ModemState.h"

#include <algorithm>
#include <cstring>

namespace com_qel::Orvane::Vantric {

namespace {

constexpr const char* connectivityTypeNames[] = {"None", "Wifi", "Carrier"};

// "WPA(PSK)" without a blank is how the product writes it.
constexpr const char* encryptionTypeNames[] = {
    "None",
    "WPA(PSK)",
    "WPA2 (PSK)",
    "WPA+WPA2 (PSK)",
    "WPA Enterprise (RADIUS)",
    "WPA2 Enterprise (RADIUS)",
    "WPA+WPA2 Enterprise (RADIUS)",
};

template <std::size_t count>
const char* nameOf(int32_t value, const char* const (&names)[count], const char* fallback) {
    const auto index = static_cast<uint32_t>(value);  // no name has a negative value
    return index < count ? names[index] : fallback;
}

// Copies `text` and its NUL; what lies behind stays as it is.
template <std::size_t size>
void copyText(char (&field)[size], std::string_view text) {
    const std::size_t length = std::min(text.size(), size - 1);
    std::memcpy(field, text.data(), length);
    field[length] = '\0';
}

const char* nameOfEncryption(int32_t type) {
    return nameOf(type, encryptionTypeNames, "Unknown encryption type");
}

}  // namespace

std::string connectivityTypeName(int32_t type) {
    return nameOf(type, connectivityTypeNames, "Unknown connectivity");
}

std::string encryptionTypeName(int32_t type) {
    return nameOfEncryption(type);
}

WifiInfo makeWifiInfo(const WifiListEntry& entry) {
    WifiInfo info = {};
    copyText(info.ssid, fieldView(entry.ssid));
    info.encryptionType = entry.encryptionType;
    copyText(info.encryptionName, nameOfEncryption(entry.encryptionType));
    info.signalLevel = entry.signalLevel;
    return info;
}

ModemStatus makeModemStatus(const ModemStateExtended& state) {
    ModemStatus status;
    std::memcpy(&status, &state, sizeof(status));
    copyText(status.wifiEncryptionName, nameOfEncryption(state.wifiEncryptionType));
    return status;
}

}  // namespace com_qel::Orvane::Vantric
