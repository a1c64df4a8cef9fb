/*
 * The client library for callers that cannot use its C++ class: an opaque handle, plain strings and
 * caller-owned buffers. Compiles as C11 and as C++17.
 *
 * Every function tolerates null pointers: it then does nothing and fails. A failure is a false
 * result; outputs are untouched unless a function says otherwise. No exception crosses the
 * interface. Strings are NUL-terminated and are not kept.
 * Ownership: modemClientCreate() gives a handle that modemClientDestroy() releases; buffers stay
 * the caller's. Destroying without disconnecting releases the shared memory, disconnecting first
 * leaves it mapped until the process ends. Thread-safety: one caller thread per handle. Usual
 * order: create, connect, any calls, disconnect, destroy.
 */
#ifndef VANTRIC_MODEM_CLIENT_C_H
#define VANTRIC_MODEM_CLIENT_C_H

#include <stdbool.h>
#include <stdint.h>

#include "Vantric/ClientRecords.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct ModemClientOpaque* ModemClientHandle;

/* A client that is not connected yet; null when memory runs out. */
ModemClientHandle modemClientCreate(void);

void modemClientDestroy(ModemClientHandle handle);

/* Maps the shared memory, creating what is missing, whether or not a server runs. */
bool modemClientConnect(ModemClientHandle handle);

void modemClientDisconnect(ModemClientHandle handle);

/*
 * Copies the network name to `buffer` WITHOUT a terminating NUL and sets `*size`, on entry the
 * buffer's size in bytes, to its length. Fails when the buffer is smaller than the name.
 */
bool modemClientGetWifiSSID(ModemClientHandle handle, char* buffer, uint32_t* size);

/* Queues the command and does not wait. Succeeds whenever the client is connected. */
bool modemClientSetWifiSSID(ModemClientHandle handle, const char* ssid);

/* Queues the command and does not wait. Succeeds whenever the client is connected. */
bool modemClientSetWifiConnection(ModemClientHandle handle, const char* ssid,
                                  int32_t encryptionType, const char* password);

/* Queues the command and does not wait. Succeeds whenever the client is connected. */
bool modemClientSetWifiConnectionRadius(ModemClientHandle handle, const char* ssid,
                                        int32_t encryptionType, const char* username,
                                        const char* password);

/*
 * Asks for a scan, waits for its result and copies the strongest networks, strongest first.
 * `*count` is the array's size in records on entry and the number of records copied on return.
 * Fails, with `*count` untouched, when the scan fails or times out; fails, with `*count` 0, when
 * there is nothing to copy.
 */
bool modemClientGetWifiAvailableListBlocking(ModemClientHandle handle, WifiInfo* array,
                                             uint32_t* count, uint32_t timeoutSeconds);

/* Asks for a refresh of the extended status and waits for it. */
bool modemClientGetModemStatusBlocking(ModemClientHandle handle, ModemStatus* status,
                                       uint32_t timeoutSeconds);

/*
 * Makes the server forget the wifi network and waits until the state shows neither password nor
 * encryption. A timeout is logged; the command stays in effect.
 */
bool modemClientForgetWifiBlocking(ModemClientHandle handle, uint32_t timeoutSeconds);

/*
 * Forgets the current network, asks for the given one and waits until the connection state has
 * changed to something other than "N/A". One timeout covers all of it. Failures to forget and
 * timeouts are logged; a connection asked for may still come up after a timeout.
 */
bool modemClientSetWifiConnectionBlocking(ModemClientHandle handle, const char* ssid,
                                          int32_t encryptionType, const char* password,
                                          uint32_t timeoutSeconds);

/* The same for a network that authenticates against a RADIUS server. */
bool modemClientSetWifiConnectionRadiusBlocking(ModemClientHandle handle, const char* ssid,
                                                int32_t encryptionType, const char* username,
                                                const char* password, uint32_t timeoutSeconds);

#ifdef __cplusplus
}
#endif

#endif
