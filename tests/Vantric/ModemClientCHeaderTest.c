/* The C header as a C11 program sees it: record layouts, signatures, and one call sequence. */
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "Vantric/ModemClientC.h"

_Static_assert(sizeof(WifiInfo) == 108, "size of WifiInfo");
_Static_assert(offsetof(WifiInfo, ssid) == 0, "WifiInfo.ssid");
_Static_assert(sizeof(((WifiInfo*)0)->ssid) == 36, "WifiInfo.ssid");
_Static_assert(offsetof(WifiInfo, encryptionType) == 36, "WifiInfo.encryptionType");
_Static_assert(offsetof(WifiInfo, encryptionName) == 40, "WifiInfo.encryptionName");
_Static_assert(sizeof(((WifiInfo*)0)->encryptionName) == 64, "WifiInfo.encryptionName");
_Static_assert(offsetof(WifiInfo, signalLevel) == 104, "WifiInfo.signalLevel");

_Static_assert(sizeof(ModemStatus) == 152, "size of ModemStatus");
_Static_assert(offsetof(ModemStatus, serverWord) == 0, "ModemStatus.serverWord");
_Static_assert(offsetof(ModemStatus, carrierSignalLevel) == 4, "ModemStatus.carrierSignalLevel");
_Static_assert(offsetof(ModemStatus, wifiSsid) == 8, "ModemStatus.wifiSsid");
_Static_assert(sizeof(((ModemStatus*)0)->wifiSsid) == 36, "ModemStatus.wifiSsid");
_Static_assert(offsetof(ModemStatus, wifiEncryptionType) == 44, "ModemStatus.wifiEncryptionType");
_Static_assert(offsetof(ModemStatus, wifiEncryptionName) == 48, "ModemStatus.wifiEncryptionName");
_Static_assert(sizeof(((ModemStatus*)0)->wifiEncryptionName) == 64, "wifiEncryptionName");
_Static_assert(offsetof(ModemStatus, wifiSignalLevel) == 112, "ModemStatus.wifiSignalLevel");
_Static_assert(offsetof(ModemStatus, ipv4Address) == 116, "ModemStatus.ipv4Address");
_Static_assert(sizeof(((ModemStatus*)0)->ipv4Address) == 16, "ModemStatus.ipv4Address");
_Static_assert(offsetof(ModemStatus, macAddress) == 132, "ModemStatus.macAddress");
_Static_assert(sizeof(((ModemStatus*)0)->macAddress) == 20, "ModemStatus.macAddress");

#define ASSERT_SIGNATURE(function, ...) \
    _Static_assert(_Generic(&(function), __VA_ARGS__ : 1, default : 0), "signature of " #function)

ASSERT_SIGNATURE(modemClientCreate, ModemClientHandle (*)(void));
ASSERT_SIGNATURE(modemClientDestroy, void (*)(ModemClientHandle));
ASSERT_SIGNATURE(modemClientConnect, bool (*)(ModemClientHandle));
ASSERT_SIGNATURE(modemClientDisconnect, void (*)(ModemClientHandle));
ASSERT_SIGNATURE(modemClientGetWifiSSID, bool (*)(ModemClientHandle, char*, uint32_t*));
ASSERT_SIGNATURE(modemClientSetWifiSSID, bool (*)(ModemClientHandle, const char*));
ASSERT_SIGNATURE(modemClientSetWifiConnection,
                 bool (*)(ModemClientHandle, const char*, int32_t, const char*));
ASSERT_SIGNATURE(modemClientSetWifiConnectionRadius,
                 bool (*)(ModemClientHandle, const char*, int32_t, const char*, const char*));
ASSERT_SIGNATURE(modemClientGetWifiAvailableListBlocking,
                 bool (*)(ModemClientHandle, WifiInfo*, uint32_t*, uint32_t));
ASSERT_SIGNATURE(modemClientGetModemStatusBlocking,
                 bool (*)(ModemClientHandle, ModemStatus*, uint32_t));
ASSERT_SIGNATURE(modemClientForgetWifiBlocking, bool (*)(ModemClientHandle, uint32_t));
ASSERT_SIGNATURE(modemClientSetWifiConnectionBlocking,
                 bool (*)(ModemClientHandle, const char*, int32_t, const char*, uint32_t));
ASSERT_SIGNATURE(modemClientSetWifiConnectionRadiusBlocking,
                 bool (*)(ModemClientHandle, const char*, int32_t, const char*, const char*,
                          uint32_t));

bool readWifiNameFromC(char* buffer, uint32_t* size);
size_t sizeOfWifiInfoInC(void);
size_t sizeOfModemStatusInC(void);

bool readWifiNameFromC(char* buffer, uint32_t* size) {
    ModemClientHandle handle = modemClientCreate();
    bool isRead = modemClientConnect(handle) && modemClientGetWifiSSID(handle, buffer, size);
    modemClientDisconnect(handle);
    modemClientDestroy(handle);
    return isRead;
}

size_t sizeOfWifiInfoInC(void) {
    return sizeof(WifiInfo);
}

size_t sizeOfModemStatusInC(void) {
    return sizeof(ModemStatus);
}
