/*
 * Prints the state of the modem, through the C interface of the client library.
 */
#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>

#include "Vantric/ModemClientC.h"

/* The server writes the text fields and may omit the NUL: print no further than the field. */
#define FIELD(field) (int)sizeof(field), (field)

static bool printStatus(ModemClientHandle client) {
    const uint32_t timeoutSeconds = 10;
    char ssid[64];
    uint32_t ssidSize = sizeof(ssid);
    ModemStatus status;

    if (!modemClientConnect(client)) {
        fputs("cannot use the shared memory\n", stderr);
        return false;
    }
    if (!modemClientGetWifiSSID(client, ssid, &ssidSize) ||
        !modemClientGetModemStatusBlocking(client, &status, timeoutSeconds)) {
        fputs("no server publishes its state\n", stderr);
        return false;
    }
    /* No NUL follows the name. */
    printf("network: %.*s\n", (int)ssidSize, ssid);
    printf("encryption: %.*s\n", FIELD(status.wifiEncryptionName));
    if (status.wifiEncryptionType == MODEM_CLIENT_ENCRYPTION_NONE) {
        puts("the network is open");
    }
    printf("signal levels: carrier %" PRId32 ", wifi %" PRId32 "\n", status.carrierSignalLevel,
           status.wifiSignalLevel);
    printf("address: %.*s\n", FIELD(status.ipv4Address));
    return true;
}

int main(void) {
    const ModemClientHandle client = modemClientCreate();
    const bool isPrinted = client != NULL && printStatus(client);

    modemClientDestroy(client);
    return isPrinted ? EXIT_SUCCESS : EXIT_FAILURE;
}
