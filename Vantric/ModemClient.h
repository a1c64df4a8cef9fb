// The client of the modem-management server: reads the state that the server publishes in shared
// memory and queues commands for it. It never talks to the modem, and it sees the effect of a
// command only in later states.
//
// Every operation returns whether it succeeded; no std::exception leaves the class. Outputs are
// written only on success, each after the read that feeds it.
// Ownership: what disconnect() lets go of stays mapped until the process ends; a client destroyed
// while connected releases its mappings.
// Thread-safety: none, a client belongs to one thread. Process-safety: each query holds one
// segment's lock for one copy; nothing is locked while sleeping, converting or logging.
// A server that is not running is no connection failure: connect() creates what is missing, and the
// queries fail until somebody publishes. The server wrote all that the queries return.
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
    // Not yet connected.
    ModemClient();
    virtual ~ModemClient();

    ModemClient(const ModemClient&) = delete;
    ModemClient& operator=(const ModemClient&) = delete;

    // Maps the state segments and the command channel, replacing what an earlier call mapped. On
    // failure, which is logged, the parts mapped so far stay in use.
    virtual bool connect();

    // Lets go of everything without releasing it; always true.
    virtual bool disconnect();

    // Queries of the basic state. Each fails while not connected and on a state older than 300
    // seconds. On a segment without a valid record the first query fails; the next ones, until one
    // finds a valid record, succeed with the values of an all-zero record (empty texts, type 0).
    virtual bool getConnectivityType(int32_t& type);

    // Asks for a connectivity: 1 for wifi, 2 for the carrier; 0 succeeds and asks for nothing, any
    // other value fails.
    virtual bool setConnectivityType(int32_t type);

    virtual bool getWifiSSID(std::string& ssid);

    // The senders queue one command and do not wait. They fail only while not connected: a command
    // that the full channel drops counts as sent. Fields are joined by "," without escaping, so one
    // that contains "," reaches the server ambiguous.
    virtual bool setWifiSSID(const std::string& ssid);

    // Asks for a scan and waits until the list is refreshed, looking every 50 ms. On success `list`
    // holds the networks, strongest first, equal levels in no particular order. Fails when the list
    // cannot be read, before or while waiting, and after `timeoutSeconds`; the server may finish
    // the scan later all the same.
    virtual bool getWifiAvailableListBlocking(std::vector<WifiInfo>& list, uint32_t timeoutSeconds);

    // Asks for a refresh of the extended status and waits for it, under the rules of the list
    // query.
    virtual bool getModemStatusBlocking(ModemStatus& status, uint32_t timeoutSeconds);

    // Reads the state twice, so the two values may come from different writes of the server. A
    // failure is logged; `password` may have been written then.
    virtual bool getWifiPasswordAndEncryptionType(int32_t& encryptionType, std::string& password);

    virtual bool setWifiPasswordAndEncryptionType(const int32_t& encryptionType,
                                                  const std::string& password);
    virtual bool setWifiConnection(const std::string& ssid, const int32_t& encryptionType,
                                   const std::string& password);
    virtual bool setWifiConnectionRadius(const std::string& ssid, const int32_t& encryptionType,
                                         const std::string& username, const std::string& password);

    // A failure is logged.
    virtual bool getHostname(std::string& hostname);

    // Asks the server to load a configuration file; the name is passed on as it stands.
    virtual bool setConfig(const std::string& configFilename);

    virtual bool getWifiConnectionState(std::string& state);
    virtual bool sendTextCommand(const std::string& text);
    virtual bool sendTextPairCommand(const std::string& first, const std::string& second);

  private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace com_qel::Orvane::Vantric
