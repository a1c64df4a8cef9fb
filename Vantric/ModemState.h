// The records of the three state segments, as the server publishes them, and the client-side
// records built from them. Pure data: no I/O, safe from any thread.
//
// The segment records are byte-packed, little-endian and shared with the deployed server: several
// integers lie at odd offsets, so take copies of fields, never references. The server wrote every
// byte of them: a text field may lack its NUL (see fieldText()) and an enumeration may hold any
// value.
#pragma once

#include <string.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

#include "Vantric/ClientRecords.h"

namespace com_qel::Orvane::Vantric {

using ::ModemStatus;
using ::WifiInfo;

enum class ConnectivityType : int32_t {
    None = 0,
    Wifi = 1,
    Carrier = 2,
};

// The Enterprise types authenticate against a RADIUS server and need a user name.
enum class EncryptionType : int32_t {
    None = 0,
    WpaPsk = 1,
    Wpa2Psk = 2,
    WpaWpa2Psk = 3,
    WpaEnterprise = 4,
    Wpa2Enterprise = 5,
    WpaWpa2Enterprise = 6,
};

#pragma pack(push, 1)

struct ModemState {
    int32_t timestamp;  // seconds since the epoch, at the server's last write
    int32_t connectivityType;
    char wifiSsid[33];
    char wifiPassword[32];
    int32_t wifiEncryptionType;
    char hostname[32];
    char wifiConnectionState[32];  // "N/A" while there is no connection
};

struct ModemStateExtended {
    int32_t serverWord;  // the server's own; never read by a client
    int32_t carrierSignalLevel;
    char wifiSsid[36];
    int32_t wifiEncryptionType;
    char wifiEncryptionName[64];  // not trusted: clients derive the name from the type
    int32_t wifiSignalLevel;
    char ipv4Address[16];
    char macAddress[20];
    int32_t updateCounter;  // changes with every refresh; compare for inequality only
};

struct WifiListEntry {
    char ssid[33];
    int32_t encryptionType;
    int32_t signalLevel;  // larger is stronger
};

struct WifiInfosList {
    static constexpr int32_t maximumCount = 100;

    WifiListEntry entries[maximumCount];  // the first `count` are meaningful
    int32_t count;                        // 0 to maximumCount
    int32_t updateCounter;                // changes with every scan; compare for inequality only
};

#pragma pack(pop)

// Display name of a ConnectivityType; "Unknown connectivity" for any other value.
std::string connectivityTypeName(int32_t type);

// Display name of an EncryptionType; "Unknown encryption type" for any other value.
std::string encryptionTypeName(int32_t type);

// The text of a fixed-size field that another process wrote: up to its NUL, or else the whole
// field. Valid as long as the field.
template <std::size_t size>
std::string_view fieldView(const char (&field)[size]) {
    return std::string_view(field, strnlen(field, size));
}

// The same as a text of its own.
template <std::size_t size>
std::string fieldText(const char (&field)[size]) {
    return std::string(fieldView(field));
}

// The client-side record of one list entry; bytes behind its texts are zero.
WifiInfo makeWifiInfo(const WifiListEntry& entry);

// The client-side record of an extended state: its first 152 bytes, with the encryption's display
// name copied over the server's. Bytes behind that name's NUL stay the server's.
ModemStatus makeModemStatus(const ModemStateExtended& state);

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the exchange format is little-endian");

static_assert(std::is_trivially_copyable_v<ModemState>);
static_assert(sizeof(ModemState) == 141);
static_assert(offsetof(ModemState, timestamp) == 0);
static_assert(offsetof(ModemState, connectivityType) == 4);
static_assert(offsetof(ModemState, wifiSsid) == 8);
static_assert(offsetof(ModemState, wifiPassword) == 41);
static_assert(offsetof(ModemState, wifiEncryptionType) == 73);
static_assert(offsetof(ModemState, hostname) == 77);
static_assert(offsetof(ModemState, wifiConnectionState) == 109);

static_assert(std::is_trivially_copyable_v<ModemStateExtended>);
static_assert(sizeof(ModemStateExtended) == 156);
static_assert(offsetof(ModemStateExtended, serverWord) == 0);
static_assert(offsetof(ModemStateExtended, carrierSignalLevel) == 4);
static_assert(offsetof(ModemStateExtended, wifiSsid) == 8);
static_assert(offsetof(ModemStateExtended, wifiEncryptionType) == 44);
static_assert(offsetof(ModemStateExtended, wifiEncryptionName) == 48);
static_assert(offsetof(ModemStateExtended, wifiSignalLevel) == 112);
static_assert(offsetof(ModemStateExtended, ipv4Address) == 116);
static_assert(offsetof(ModemStateExtended, macAddress) == 132);
static_assert(offsetof(ModemStateExtended, updateCounter) == sizeof(ModemStatus));

static_assert(std::is_trivially_copyable_v<WifiListEntry>);
static_assert(sizeof(WifiListEntry) == 41);
static_assert(offsetof(WifiListEntry, ssid) == 0);
static_assert(offsetof(WifiListEntry, encryptionType) == 33);
static_assert(offsetof(WifiListEntry, signalLevel) == 37);

static_assert(std::is_trivially_copyable_v<WifiInfosList>);
static_assert(sizeof(WifiInfosList) == 4108);
static_assert(offsetof(WifiInfosList, entries) == 0);
static_assert(offsetof(WifiInfosList, count) == 4100);
static_assert(offsetof(WifiInfosList, updateCounter) == 4104);

static_assert(std::is_trivially_copyable_v<WifiInfo>);
static_assert(std::is_trivially_copyable_v<ModemStatus>);

}  // namespace com_qel::Orvane::Vantric
