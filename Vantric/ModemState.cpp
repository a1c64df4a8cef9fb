#include "Vantric/ModemState.h"

#include <algorithm>
#include <cstring>

namespace com_qel::Orvane::Vantric {

namespace {

// In each table the last name stands for every value without a name of its own.
constexpr const char* connectivityTypeNames[] = {"None", "Wifi", "Carrier", "Unknown connectivity"};

// "WPA(PSK)" without a blank is how the product writes it.
constexpr const char* encryptionTypeNames[] = {
    "None",
    "WPA(PSK)",
    "WPA2 (PSK)",
    "WPA+WPA2 (PSK)",
    "WPA Enterprise (RADIUS)",
    "WPA2 Enterprise (RADIUS)",
    "WPA+WPA2 Enterprise (RADIUS)",
    "Unknown encryption type",
};

template <std::size_t count>
const char* nameOf(int32_t value, const char* const (&names)[count]) {
    const auto index = static_cast<uint32_t>(value);  // no name has a negative value
    return names[std::min<std::size_t>(index, count - 1)];
}

// Copies `text` and its NUL; the bytes after it stay as they are.
template <std::size_t size>
void copyText(char (&field)[size], std::string_view text) {
    const std::size_t length = std::min(text.size(), size - 1);
    std::memcpy(field, text.data(), length);
    field[length] = '\0';
}

}  // namespace

std::string connectivityTypeName(int32_t type) {
    return nameOf(type, connectivityTypeNames);
}

std::string encryptionTypeName(int32_t type) {
    return nameOf(type, encryptionTypeNames);
}

WifiInfo makeWifiInfo(const WifiListEntry& entry) {
    WifiInfo info = {};
    copyText(info.ssid, fieldView(entry.ssid));
    info.encryptionType = entry.encryptionType;
    copyText(info.encryptionName, nameOf(entry.encryptionType, encryptionTypeNames));
    info.signalLevel = entry.signalLevel;
    return info;
}

ModemStatus makeModemStatus(const ModemStateExtended& state) {
    ModemStatus status;
    std::memcpy(&status, &state, sizeof(status));
    copyText(status.wifiEncryptionName, nameOf(state.wifiEncryptionType, encryptionTypeNames));
    return status;
}

}  // namespace com_qel::Orvane::Vantric
