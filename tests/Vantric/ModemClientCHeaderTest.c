/* The C header as a C11 program sees it: signatures, and one call sequence. */
#include <stdbool.h>
#include <stdint.h>

#include "Vantric/ModemClientC.h"

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

bool readWifiNameFromC(char* buffer, uint32_t* size) {
    ModemClientHandle handle = modemClientCreate();
    bool isRead = modemClientConnect(handle) && modemClientGetWifiSSID(handle, buffer, size);
    modemClientDisconnect(handle);
    modemClientDestroy(handle);
    return isRead;
}
