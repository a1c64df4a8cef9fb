/**
 * \file
 * The two records that the client library hands to its callers, from C++ and from C.
 *
 * Plain data with a fixed layout and no pointers, so a copy is complete and nothing has to be
 * freed: 32-bit little-endian integers and texts in fixed-size fields. In C++ they are also
 * com_qel::Orvane::Vantric::WifiInfo and ModemStatus.
 */
#ifndef VANTRIC_CLIENT_RECORDS_H
#define VANTRIC_CLIENT_RECORDS_H

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

/**
 * One network in range. The client library builds it from the server's values: every text has its
 * NUL, and the bytes after that are zero.
 */
typedef struct WifiInfo {
    char ssid[36];           /**< the network's name, at most 33 bytes */
    int32_t encryptionType;  /**< an EncryptionType value, or whatever the server published */
    char encryptionName[64]; /**< display name of encryptionType */
    int32_t signalLevel;     /**< larger is stronger; the unit is the server's */
} WifiInfo;

/**
 * The extended modem status. All fields but wifiEncryptionName are the server's bytes as they
 * stand: a text field may lack its NUL when the server is broken. The units of the signal levels
 * are the server's.
 */
typedef struct ModemStatus {
    int32_t serverWord;          /**< the server's own; has no meaning for clients */
    int32_t carrierSignalLevel;  /**< of the cellular link */
    char wifiSsid[36];           /**< name of the wifi network */
    int32_t wifiEncryptionType;  /**< an EncryptionType value, or whatever the server published */
    char wifiEncryptionName[64]; /**< display name of wifiEncryptionType, written by the client */
    int32_t wifiSignalLevel;     /**< of the wifi link */
    char ipv4Address[16];        /**< dotted decimal text */
    char macAddress[20];         /**< text */
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
