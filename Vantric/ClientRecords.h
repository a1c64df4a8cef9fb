/*
 * The two records that the client library hands to its callers, from C++ and from C.
 *
 * Plain data with a fixed layout: 32-bit little-endian integers and NUL-terminated texts in
 * fixed-size fields. In C++ they are also com_qel::Orvane::Vantric::WifiInfo and ModemStatus.
 */
#ifndef VANTRIC_CLIENT_RECORDS_H
#define VANTRIC_CLIENT_RECORDS_H

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

/* One network in range. Written by the client library; bytes behind each text's NUL are zero. */
typedef struct WifiInfo {
    char ssid[36];
    int32_t encryptionType;  /* an EncryptionType value, as the server published it */
    char encryptionName[64]; /* display name of encryptionType */
    int32_t signalLevel;     /* larger is stronger; the unit is the server's */
} WifiInfo;

/*
 * The extended modem status. All fields but wifiEncryptionName are the server's bytes as they
 * stand: a text field may lack its NUL when the server is broken.
 */
typedef struct ModemStatus {
    int32_t serverWord; /* the server's own; has no meaning for clients */
    int32_t carrierSignalLevel;
    char wifiSsid[36];
    int32_t wifiEncryptionType;
    char wifiEncryptionName[64]; /* display name of wifiEncryptionType, written by the client */
    int32_t wifiSignalLevel;
    char ipv4Address[16];
    char macAddress[20];
} ModemStatus;

static_assert(sizeof(WifiInfo) == 108, "WifiInfo must have no padding");
static_assert(offsetof(WifiInfo, ssid) == 0, "WifiInfo layout");
static_assert(offsetof(WifiInfo, encryptionType) == 36, "WifiInfo layout");
static_assert(offsetof(WifiInfo, encryptionName) == 40, "WifiInfo layout");
static_assert(offsetof(WifiInfo, signalLevel) == 104, "WifiInfo layout");

static_assert(sizeof(ModemStatus) == 152, "ModemStatus must have no padding");
static_assert(offsetof(ModemStatus, serverWord) == 0, "ModemStatus layout");
static_assert(offsetof(ModemStatus, carrierSignalLevel) == 4, "ModemStatus layout");
static_assert(offsetof(ModemStatus, wifiSsid) == 8, "ModemStatus layout");
static_assert(offsetof(ModemStatus, wifiEncryptionType) == 44, "ModemStatus layout");
static_assert(offsetof(ModemStatus, wifiEncryptionName) == 48, "ModemStatus layout");
static_assert(offsetof(ModemStatus, wifiSignalLevel) == 112, "ModemStatus layout");
static_assert(offsetof(ModemStatus, ipv4Address) == 116, "ModemStatus layout");
static_assert(offsetof(ModemStatus, macAddress) == 132, "ModemStatus layout");

#endif
