/**
 * \file
 * The client library for callers that cannot use its C++ class: an opaque handle, plain strings and
 * caller-owned buffers. Compiles as C11 and as C++17.
 *
 * Every function tolerates null pointers: it then does nothing and fails. A failure is a false
 * result and is silent unless the function says that it is logged; outputs are untouched unless it
 * says otherwise. No std::exception crosses the interface. Strings are NUL-terminated and are not
 * kept. Timeouts are in seconds and do not cover the wait for a lock that another process holds;
 * with a timeout of 0 a function sends its first command and fails.
 * Ownership: modemClientCreate() gives a handle that modemClientDestroy() releases; buffers stay
 * the caller's. Destroying a connected client releases the shared memory; after disconnecting it
 * stays mapped until the process ends. Thread-safety: one caller thread per handle. Usual order:
 * create, connect, any calls, disconnect, destroy.
 *
 * The head of ModemClient.h holds here as well. It says what disconnecting costs, what lets two
 * processes into one lock, what fork() and the cancellation of threads do to a client, when memory
 * that runs out can end the process, when a state can be read and who wrote it.
 */
#ifndef VANTRIC_MODEM_CLIENT_C_H
#define VANTRIC_MODEM_CLIENT_C_H

#include <stdbool.h>
#include <stdint.h>

#include "CoreMisc/Export.h"
#include "Vantric/ClientRecords.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * How a wifi network is secured: the values of `encryptionType` in arguments and records. The
 * server may publish others. ENTERPRISE types authenticate against a RADIUS server.
 */
enum ModemClientEncryption {
    MODEM_CLIENT_ENCRYPTION_NONE = 0,
    MODEM_CLIENT_ENCRYPTION_WPA_PSK = 1,
    MODEM_CLIENT_ENCRYPTION_WPA2_PSK = 2,
    MODEM_CLIENT_ENCRYPTION_WPA_WPA2_PSK = 3,
    MODEM_CLIENT_ENCRYPTION_WPA_ENTERPRISE = 4,
    MODEM_CLIENT_ENCRYPTION_WPA2_ENTERPRISE = 5,
    MODEM_CLIENT_ENCRYPTION_WPA_WPA2_ENTERPRISE = 6
};

/** A client. Null, or from modemClientCreate() and not yet destroyed. */
typedef struct ModemClientOpaque* ModemClientHandle;

/** A client that is not connected yet; null when memory runs out. */
VANTRIC_EXPORT ModemClientHandle modemClientCreate(void);

/**
 * Releases the client; the handle must not be used again. The last user of the shared memory
 * removes it, with the commands that the server has not taken out.
 */
VANTRIC_EXPORT void modemClientDestroy(ModemClientHandle handle);

/**
 * Maps the shared memory, creating what is missing, whether or not a server runs. When no
 * client is attached yet, this drops the commands that the server has not taken out. Releases every
 * lock, also those that other processes hold. A failure is logged. A lock that cannot be opened is
 * logged too ("MultiProcessLock: sem_open failed") but is no failure: the client then works without
 * it, and copies can be torn and commands lost.
 */
VANTRIC_EXPORT bool modemClientConnect(ModemClientHandle handle);

/** Forgets the shared memory without releasing it. */
VANTRIC_EXPORT void modemClientDisconnect(ModemClientHandle handle);

/**
 * Copies the network name to `buffer` WITHOUT a terminating NUL and sets `*size`, on entry the
 * buffer's size in bytes, to its length. Fails when the buffer is smaller than the name, which has
 * at most 33 bytes, and when the state cannot be read.
 */
VANTRIC_EXPORT bool modemClientGetWifiSSID(ModemClientHandle handle, char* buffer, uint32_t* size);

/**
 * Asks the server to join the network `ssid`. Queues the command and does not wait. Fails while not
 * connected and when memory runs out. Succeeds even when the channel drops the command: because it
 * is full, or because the texts take more than 4,088 bytes, which never fit.
 */
VANTRIC_EXPORT bool modemClientSetWifiSSID(ModemClientHandle handle, const char* ssid);

/**
 * Asks the server to join a network without or with a pre-shared key (types NONE to WPA_WPA2_PSK),
 * under the rules of modemClientSetWifiSSID(). A comma in `ssid` makes the command ambiguous,
 * because nothing is escaped.
 */
VANTRIC_EXPORT bool modemClientSetWifiConnection(ModemClientHandle handle, const char* ssid,
                                                 int32_t encryptionType, const char* password);

/**
 * The same for a network that authenticates against a RADIUS server (the ENTERPRISE types). Here
 * `username` must have no comma either.
 */
VANTRIC_EXPORT bool modemClientSetWifiConnectionRadius(ModemClientHandle handle, const char* ssid,
                                                       int32_t encryptionType, const char* username,
                                                       const char* password);

/**
 * Asks for a scan, waits for its result and copies the strongest networks, strongest first.
 * `*count` is the array's size in records on entry and the number of records copied on return.
 * Fails, with `*count` untouched, when the scan fails or times out; fails, with `*count` 0, when
 * there is nothing to copy: no network in range, or no room.
 */
VANTRIC_EXPORT bool modemClientGetWifiAvailableListBlocking(ModemClientHandle handle,
                                                            WifiInfo* array, uint32_t* count,
                                                            uint32_t timeoutSeconds);

/**
 * Asks for a refresh of the extended status, waits for it and copies it to `*status`. Fails when
 * the status cannot be read and after `timeoutSeconds`.
 */
VANTRIC_EXPORT bool modemClientGetModemStatusBlocking(ModemClientHandle handle, ModemStatus* status,
                                                      uint32_t timeoutSeconds);

/**
 * Makes the server forget the wifi network and waits until the state shows neither password nor
 * encryption, polling every 50 ms. Fails while not connected and `timeoutSeconds` after the command
 * was sent. A timeout is logged as a Warning; the command stays in effect. A read that fails is
 * repeated at once, and logged each time: a stale state keeps the processor busy until the timeout.
 * On a state without a valid record, the first read fails and the second one counts as forgotten.
 * If an earlier query of this client already failed on such a state, and no query has read a valid
 * record since, the first read counts as forgotten.
 */
VANTRIC_EXPORT bool modemClientForgetWifiBlocking(ModemClientHandle handle,
                                                  uint32_t timeoutSeconds);

/**
 * Forgets the current network, asks for the given one and waits until the connection state has
 * changed to something other than "N/A", polling every 50 ms. One timeout covers all of it. Fails
 * when the network cannot be forgotten (logged as an Error), when the connection state cannot be
 * read before the wait, and after `timeoutSeconds` (logged as a Warning). A state that loses its
 * valid record during the wait counts as connected at the second read, unless the text was empty
 * before. A connection that was asked for may still come up after a failure.
 */
VANTRIC_EXPORT bool modemClientSetWifiConnectionBlocking(ModemClientHandle handle, const char* ssid,
                                                         int32_t encryptionType,
                                                         const char* password,
                                                         uint32_t timeoutSeconds);

/** The same for a network that authenticates against a RADIUS server. */
VANTRIC_EXPORT bool modemClientSetWifiConnectionRadiusBlocking(
    ModemClientHandle handle, const char* ssid, int32_t encryptionType, const char* username,
    const char* password, uint32_t timeoutSeconds);

#ifdef __cplusplus
}
#endif

#endif
