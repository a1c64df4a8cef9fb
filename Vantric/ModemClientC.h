/*
 * The client library for callers that cannot use its C++ class: an opaque handle, plain strings and
 * caller-owned buffers. Compiles as C11 and as C++17.
 *
 * Every function tolerates null pointers: it then does nothing and fails. A failure is a false
 * result and is silent unless the function says that it is logged; outputs are untouched unless it
 * says otherwise. No std::exception crosses the interface. Strings are NUL-terminated and are not
 * kept. Timeouts are in seconds and do not cover the wait for a lock that another process holds.
 * Ownership: modemClientCreate() gives a handle that modemClientDestroy() releases; buffers stay
 * the caller's. Destroying without disconnecting releases the shared memory, disconnecting first
 * leaves it mapped until the process ends. Thread-safety: one caller thread per handle. Usual
 * order: create, connect, any calls, disconnect, destroy.
 *
 * When a state can be read, how old it may be and who wrote it is told at the class ModemClient.
 */
#ifndef VANTRIC_MODEM_CLIENT_C_H
#define VANTRIC_MODEM_CLIENT_C_H

#include <stdbool.h>
#include <stdint.h>

#include "Vantric/ClientRecords.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A client. Null, or from modemClientCreate() and not yet destroyed. */
typedef struct ModemClientOpaque* ModemClientHandle;

/* A client that is not connected yet; null when memory runs out. */
ModemClientHandle modemClientCreate(void);

/* Releases the client; the handle must not be used again. */
void modemClientDestroy(ModemClientHandle handle);

/*
 * Maps the shared memory, creating what is missing, whether or not a server runs. When no
 * client is attached yet, this drops the commands that the server has not taken out. A failure is
 * logged.
 */
bool modemClientConnect(ModemClientHandle handle);

/* Lets go of the shared memory without releasing it. */
void modemClientDisconnect(ModemClientHandle handle);

/*
 * Copies the network name to `buffer` WITHOUT a terminating NUL and sets `*size`, on entry the
 * buffer's size in bytes, to its length. Fails when the buffer is smaller than the name, which has
 * at most 33 bytes, and when the state cannot be read.
 */
bool modemClientGetWifiSSID(ModemClientHandle handle, char* buffer, uint32_t* size);

/*
 * Asks the server to join the network `ssid`. Queues the command and does not wait. Succeeds
 * whenever the client is connected, even if the full channel drops the command; fails as well when
 * memory runs out.
 */
bool modemClientSetWifiSSID(ModemClientHandle handle, const char* ssid);

/*
 * Asks the server to join a network without or with a pre-shared key (types 0 to 3), under the
 * rules of modemClientSetWifiSSID().
 */
bool modemClientSetWifiConnection(ModemClientHandle handle, const char* ssid,
                                  int32_t encryptionType, const char* password);

/* The same for a network that authenticates against a RADIUS server (types 4 to 6). */
bool modemClientSetWifiConnectionRadius(ModemClientHandle handle, const char* ssid,
                                        int32_t encryptionType, const char* username,
                                        const char* password);

/*
 * Asks for a scan, waits for its result and copies the strongest networks, strongest first.
 * `*count` is the array's size in records on entry and the number of records copied on return.
 * Fails, with `*count` untouched, when the scan fails or times out; fails, with `*count` 0, when
 * there is nothing to copy: no network in range, or no room.
 */
bool modemClientGetWifiAvailableListBlocking(ModemClientHandle handle, WifiInfo* array,
                                             uint32_t* count, uint32_t timeoutSeconds);

/*
 * Asks for a refresh of the extended status, waits for it and copies it to `*status`. Fails when
 * the status cannot be read and after `timeoutSeconds`.
 */
bool modemClientGetModemStatusBlocking(ModemClientHandle handle, ModemStatus* status,
                                       uint32_t timeoutSeconds);

/*
 * Makes the server forget the wifi network and waits until the state shows neither password nor
 * encryption, looking every 50 ms. Fails while not connected and after `timeoutSeconds`. A timeout
 * is logged as a Warning; the command stays in effect. A look that fails is repeated at once, and
 * logged each time: a stale state keeps the processor busy until the timeout. A state without a
 * valid record counts as forgotten at the second look.
 */
bool modemClientForgetWifiBlocking(ModemClientHandle handle, uint32_t timeoutSeconds);

/*
 * Forgets the current network, asks for the given one and waits until the connection state has
 * changed to something other than "N/A", looking every 50 ms. One timeout covers all of it. Fails
 * when the network cannot be forgotten (logged as an Error), when the connection state cannot be
 * read before the wait, and after `timeoutSeconds` (logged as a Warning). A connection that was
 * asked for may still come up after a failure.
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
