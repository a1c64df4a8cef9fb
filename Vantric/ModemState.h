/// \file
/// The records of the three state segments, as the server publishes them, and the client-side
/// records built from them. Pure data: no I/O, safe from any thread.
///
/// The segment records are byte-packed, little-endian and shared with the deployed server: several
/// integers lie at odd offsets, so take copies of fields, never references. The server wrote every
/// byte of them: a text field may lack its NUL (see fieldView()) and an enumeration may hold any
/// value.
#pragma once

#include <string.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

#include "CoreMisc/Export.h"
#include "Vantric/ClientRecords.h"

namespace com_qel::Orvane::Vantric {

using ::ModemStatus;
using ::WifiInfo;

/// What connects the device to the outside.
enum class ConnectivityType : int32_t {
    None = 0,     ///< shown as "None"
    Wifi = 1,     ///< shown as "Wifi"
    Carrier = 2,  ///< the cellular link, shown as "Carrier"
};

/// How a wifi network is secured. The Enterprise types authenticate against a RADIUS server and
/// need a user name.
enum class EncryptionType : int32_t {
    None = 0,               ///< shown as "None"
    WpaPsk = 1,             ///< shown as "WPA(PSK)"
    Wpa2Psk = 2,            ///< shown as "WPA2 (PSK)"
    WpaWpa2Psk = 3,         ///< shown as "WPA+WPA2 (PSK)"
    WpaEnterprise = 4,      ///< shown as "WPA Enterprise (RADIUS)"
    Wpa2Enterprise = 5,     ///< shown as "WPA2 Enterprise (RADIUS)"
    WpaWpa2Enterprise = 6,  ///< shown as "WPA+WPA2 Enterprise (RADIUS)"
};

#pragma pack(push, 1)

/// The basic state, which the server writes all the time. The one record with an age.
struct ModemState {
    int32_t timestamp;             ///< seconds since the epoch, at the server's last write
    int32_t connectivityType;      ///< a ConnectivityType value
    char wifiSsid[33];             ///< name of the configured network
    char wifiPassword[32];         ///< its pass phrase, in clear text
    int32_t wifiEncryptionType;    ///< an EncryptionType value
    char hostname[32];             ///< the modem's
    char wifiConnectionState[32];  ///< "N/A" while there is no connection
};

/// The extended state, which the server refreshes on request.
struct ModemStateExtended {
    int32_t serverWord;           ///< the server's own; never read by a client
    int32_t carrierSignalLevel;   ///< of the cellular link; the unit is the server's
    char wifiSsid[36];            ///< name of the wifi network
    int32_t wifiEncryptionType;   ///< an EncryptionType value
    char wifiEncryptionName[64];  ///< not trusted: clients derive the name from the type
    int32_t wifiSignalLevel;      ///< of the wifi link; the unit is the server's
    char ipv4Address[16];         ///< dotted decimal text
    char macAddress[20];          ///< text
    int32_t updateCounter;        ///< changes with every refresh; compare for inequality only
};

/// One network in range.
struct WifiListEntry {
    char ssid[33];           ///< its name
    int32_t encryptionType;  ///< an EncryptionType value
    int32_t signalLevel;     ///< larger is stronger; the unit is the server's
};

/// The networks that the last scan found.
struct WifiInfosList {
    /// A server never publishes more; readers do not rely on it.
    static constexpr int32_t maximumCount = 100;

    WifiListEntry entries[maximumCount];  ///< the first `count` are meaningful
    int32_t count;                        ///< 0 to maximumCount
    int32_t updateCounter;                ///< changes with every scan; compare for inequality only
};

#pragma pack(pop)

/// Display name of a ConnectivityType; "Unknown connectivity" for any other value.
VANTRIC_EXPORT std::string connectivityTypeName(int32_t type);

/// Display name of an EncryptionType; "Unknown encryption type" for any other value.
VANTRIC_EXPORT std::string encryptionTypeName(int32_t type);

/// The text of a fixed-size field that another process wrote: up to its NUL, or else the whole
/// field. Valid as long as the field.
template <std::size_t size>
std::string_view fieldView(const char (&field)[size]) {
    return std::string_view(field, strnlen(field, size));
}

/// The same as a text of its own.
template <std::size_t size>
std::string fieldText(const char (&field)[size]) {
    return std::string(fieldView(field));
}

/// The client-side record of one list entry; the bytes after its texts are zero.
VANTRIC_EXPORT WifiInfo makeWifiInfo(const WifiListEntry& entry);

/// The client-side record of an extended state: its first 152 bytes, with the encryption's display
/// name copied over the server's. The bytes after that name's NUL stay the server's.
VANTRIC_EXPORT ModemStatus makeModemStatus(const ModemStateExtended& state);

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
