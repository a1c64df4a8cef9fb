// The client of the modem-management server: reads the state that the server publishes in shared
// memory and queues commands for it. It never talks to the modem, and it sees the effect of a
// command only in later states.
//
// Every operation returns whether it succeeded, and no std::exception leaves it. A failure is
// silent unless the operation says that it is logged, as an Error record then. Outputs are written
// only on success, each after the read that feeds it.
// Ownership: what disconnect() lets go of stays mapped until the process ends; a client destroyed
// while connected releases its mappings. Arguments are copied, never kept.
// Thread-safety: none, a client belongs to one thread. Process-safety: each query holds one
// segment's lock for one copy; nothing is locked while sleeping, converting or logging. Waiting for
// a lock has no time limit, not even in the operations that take a timeout.
// A server that is not running is no connection failure: connect() creates what is missing, and
// getConnectivityType() tells what the queries give until somebody publishes. The server wrote all
// that the queries return: numbers may have any value, and a text is its field up to the first NUL
// or, without one, the whole field.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Vantric/ModemState.h"

namespace com_qel::Orvane::Vantric {

// The order of the virtual operations is part of the library's binary interface.
class ModemClient {
  public:
    // A client that is not connected yet. Throws std::bad_alloc when memory runs out.
    ModemClient();

    // Releases what is connected, the command channel first. Releases nothing after disconnect().
    virtual ~ModemClient();

    ModemClient(const ModemClient&) = delete;
    ModemClient& operator=(const ModemClient&) = delete;

    // Maps the state segments and the command channel, replacing what an earlier call mapped. When
    // no client is attached to the channel yet, this empties it: commands that the server has not
    // taken out are lost. On failure, which is logged, the parts mapped so far stay in use and the
    // others are as before.
    virtual bool connect();

    // Lets go of everything without releasing it; always true. The client can connect() again.
    virtual bool disconnect();

    // Queries a ConnectivityType value.
    //
    // This and the other queries of the basic state fail while not connected, and on a state whose
    // time stamp is more than 300 seconds behind the wall clock. On a segment without a valid
    // record the first query fails; the next ones, until one finds a valid record, succeed with the
    // values of an all-zero record (empty texts, type 0). From five minutes after 19 January 2038,
    // 03:14:07 UTC, at the latest, the time stamp's 32 bits make every state too old.
    virtual bool getConnectivityType(int32_t& type);

    // Asks for a connectivity: 1 for wifi, 2 for the carrier; 0 succeeds and asks for nothing, any
    // other value fails. Otherwise a sender like setWifiSSID().
    virtual bool setConnectivityType(int32_t type);

    // Queries the name of the configured wifi network.
    virtual bool getWifiSSID(std::string& ssid);

    // Asks the server to join the network `ssid`.
    //
    // This and the other senders queue one command and do not wait. They fail while not connected
    // and when memory runs out; a command that the full channel drops counts as sent. Values are
    // passed on as they stand. Fields are joined by "," without escaping, so one that contains ","
    // reaches the server ambiguous.
    virtual bool setWifiSSID(const std::string& ssid);

    // Asks for a scan and waits until the list is refreshed, looking every 50 ms. On success `list`
    // holds the networks, strongest first, equal levels in no particular order; it is empty when
    // there are none. A published count below 0 or above 100 is taken for 0 or 100.
    //
    // Fails while not connected, when the list cannot be read, before or while waiting, and after
    // `timeoutSeconds`, with 0 always; the server may finish the scan later all the same. A list
    // without a valid record fails the first look only: after that it counts as all zero, update
    // counter included, so that it may pass for a refreshed one.
    virtual bool getWifiAvailableListBlocking(std::vector<WifiInfo>& list, uint32_t timeoutSeconds);

    // Asks for a refresh of the extended status and waits for it, under the rules of
    // getWifiAvailableListBlocking().
    virtual bool getModemStatusBlocking(ModemStatus& status, uint32_t timeoutSeconds);

    // Queries the configured network's pass phrase, in clear text, and its EncryptionType value.
    // Reads the state twice, so the two may come from different writes of the server. A failure is
    // logged; `password` may have been written then.
    virtual bool getWifiPasswordAndEncryptionType(int32_t& encryptionType, std::string& password);

    // Sends new credentials for the configured network; type 0 with the password "0" forgets it.
    virtual bool setWifiPasswordAndEncryptionType(const int32_t& encryptionType,
                                                  const std::string& password);

    // Asks the server to join a network without or with a pre-shared key (types 0 to 3).
    virtual bool setWifiConnection(const std::string& ssid, const int32_t& encryptionType,
                                   const std::string& password);

    // Asks the server to join a network that authenticates against a RADIUS server (types 4 to 6).
    virtual bool setWifiConnectionRadius(const std::string& ssid, const int32_t& encryptionType,
                                         const std::string& username, const std::string& password);

    // Queries the modem's host name. A failure is logged.
    virtual bool getHostname(std::string& hostname);

    // Asks the server to load a configuration file, which only the server opens.
    virtual bool setConfig(const std::string& configFilename);

    // Queries the text that describes the wifi connection; "N/A" while there is none.
    virtual bool getWifiConnectionState(std::string& state);

    // Sends a text whose meaning is between the caller and the server.
    virtual bool sendTextCommand(const std::string& text);

    // Sends two such texts as one command.
    virtual bool sendTextPairCommand(const std::string& first, const std::string& second);

  private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace com_qel::Orvane::Vantric
