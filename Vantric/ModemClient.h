/// \file
/// The client of the modem-management server: reads the state that the server publishes in shared
/// memory and queues commands for it. It never talks to the modem, and it sees the effect of a
/// command only in later states.
///
/// Every operation returns whether it succeeded, and no std::exception leaves it. A failure is
/// silent unless the operation says that it is logged; the log then gets an Error record. If memory
/// runs out while the record is made, the record is cut or lost; with the log turned on, the
/// process can also end. Outputs are written only on success, each after the read that feeds it.
///
/// Ownership: arguments are copied, never kept. A client destroyed while connected releases its
/// mappings. disconnect() only forgets them: each connect() that follows it leaves 4 more
/// mappings and 26 KB with the process until it ends, and after some 16,000 of them, at the
/// kernel's usual limit of mappings, connect() fails. To start anew at no cost, destroy the client,
/// or call connect() again without disconnect().
///
/// Thread-safety: none, a client belongs to one thread; each thread may have its own. That thread
/// must not be cancelled inside a call: the cancellation unwinds functions that must not throw, and
/// the process can end.
///
/// Process-safety: each query holds one segment's lock for one copy; nothing is locked while
/// sleeping, converting or logging. Waiting for a lock has no time limit, not even in the
/// operations that take a timeout. In these cases two processes, or two threads with a client each,
/// can be in one lock, and a copy can then be torn and a command lost:
/// - connect() opens each lock by releasing it, even one that another process holds. Connect once
///   and stay connected.
/// - A signal whose handler interrupts the wait for a lock ends the wait, and the call goes on
///   without the lock. Install handlers with SA_RESTART, or block signals in the client's thread.
/// - A lock that cannot be opened, for lack of permission, room, memory or descriptors, is never
///   taken: connect() still succeeds, and every call goes on without the lock. Only the log shows
///   this, with the Error record "MultiProcessLock: sem_open failed".
/// - A lock that an earlier run left above 1 stays there; see Vantric/Utils/MultiProcessLock.h.
/// A server killed while it publishes leaves a torn record as well, until it publishes again.
///
/// After fork() the child must not destroy the client it inherited: both processes count as one
/// user, so that would remove the objects that the parent uses. If the parent has a single thread,
/// the child may call disconnect() on it, nothing else; that makes the client harmless, and the
/// child can connect one of its own. In the child of a parent with several threads disconnect() can
/// wait forever, for a mutex that another thread held at the fork: call exec() or _exit() there.
///
/// A server that is not running is no connection failure: connect() creates what is missing, and
/// getConnectivityType() describes what the queries return until a server publishes. The server
/// wrote all that the queries return: numbers may have any value, and a text is its field up to the
/// first NUL or, without one, the whole field.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "CoreMisc/Export.h"
#include "Vantric/ModemState.h"

namespace com_qel::Orvane::Vantric {

/// The order of the virtual operations is part of the library's binary interface.
class VANTRIC_EXPORT ModemClient {
  public:
    /// A client that is not connected yet. Throws std::bad_alloc when memory runs out.
    ModemClient();

    /// Releases what is connected, the command channel first; after disconnect() that is nothing.
    /// The last user of an object removes it: commands that the server has not taken out go with
    /// the channel.
    virtual ~ModemClient();

    ModemClient(const ModemClient&) = delete;
    ModemClient& operator=(const ModemClient&) = delete;

    /// Maps the state segments and the command channel, replacing what an earlier call mapped. When
    /// no client is attached to the channel yet, this empties it: commands that the server has not
    /// taken out are lost. Releases all their locks, also those that other processes hold. A lock
    /// that cannot be opened is logged and is no failure: the client then works without it. On
    /// failure, which is logged, the parts mapped so far stay in use and the others are as before.
    virtual bool connect();

    /// Lets go of everything without releasing it; always true. The client can connect() again.
    virtual bool disconnect();

    /// Queries a ConnectivityType value.
    ///
    /// This and the other queries of the basic state fail while not connected, and on a state whose
    /// time stamp is more than 300 seconds older than the wall clock. On a segment without a valid
    /// record the first query fails; the next ones succeed with the values of an all-zero record
    /// (empty texts, type 0) until one has found a valid record that is not too old; connecting
    /// again makes no difference. So a caller that ignores the first failure mistakes zeros
    /// for a state. From five minutes after 19 January 2038, 03:14:07 UTC, at the latest, the time
    /// stamp's 32 bits make every state too old.
    virtual bool getConnectivityType(int32_t& type);

    /// Requests a connectivity: 1 for wifi, 2 for the carrier; 0 succeeds and requests nothing, any
    /// other value fails. In all else a sender like setWifiSSID().
    virtual bool setConnectivityType(int32_t type);

    /// Queries the name of the configured wifi network.
    virtual bool getWifiSSID(std::string& ssid);

    /// Asks the server to join the network `ssid`.
    ///
    /// This and the other senders queue one command and do not wait. They fail while not connected
    /// and when memory runs out. They succeed even when the channel drops the command: because it
    /// is full, or because the joined fields exceed 4,088 bytes, which never fit. Only a later
    /// state shows that a command arrived. Values are passed on unchanged. Fields are joined by
    /// "," without escaping, so the server reads a field that contains "," as two fields: keep
    /// commas out of all but the last field.
    virtual bool setWifiSSID(const std::string& ssid);

    /// Asks for a scan and waits until the list's update counter changes, polling every 50 ms. On
    /// success `list` holds the networks, strongest first, equal levels in no particular order; it
    /// is empty when there are none. A published count below 0 or above 100 counts as 0 or 100.
    ///
    /// Fails while not connected, when the list cannot be read, before or while waiting, and after
    /// `timeoutSeconds`; the server may finish the scan later all the same. With a timeout of 0 it
    /// sends the request, polls once and fails, whatever it finds. A segment without a valid record
    /// fails the first read only and then counts as all zero, update counter included: whatever is
    /// published first passes for the refreshed list, even if it is an older one. To be sure, ask
    /// again after the first success that follows a failure.
    virtual bool getWifiAvailableListBlocking(std::vector<WifiInfo>& list, uint32_t timeoutSeconds);

    /// Asks for a refresh of the extended status and waits for it, under the rules of
    /// getWifiAvailableListBlocking().
    virtual bool getModemStatusBlocking(ModemStatus& status, uint32_t timeoutSeconds);

    /// Queries the configured network's pass phrase, in clear text, and its EncryptionType value.
    /// Reads the state twice, so the two may come from different writes of the server. A failure is
    /// logged; `password` may have been written then.
    virtual bool getWifiPasswordAndEncryptionType(int32_t& encryptionType, std::string& password);

    /// Sends new credentials for the configured network; type 0 with the password "0" forgets it.
    virtual bool setWifiPasswordAndEncryptionType(const int32_t& encryptionType,
                                                  const std::string& password);

    /// Asks the server to join a network without or with a pre-shared key (types 0 to 3).
    virtual bool setWifiConnection(const std::string& ssid, const int32_t& encryptionType,
                                   const std::string& password);

    /// Asks the server to join a network that authenticates against a RADIUS server (types 4 to 6).
    virtual bool setWifiConnectionRadius(const std::string& ssid, const int32_t& encryptionType,
                                         const std::string& username, const std::string& password);

    /// Queries the modem's host name. A failure is logged.
    virtual bool getHostname(std::string& hostname);

    /// Asks the server to load a configuration file, which only the server opens.
    virtual bool setConfig(const std::string& configFilename);

    /// Queries the text that describes the wifi connection; "N/A" while there is none.
    virtual bool getWifiConnectionState(std::string& state);

    /// Sends a text whose meaning is between the caller and the server.
    virtual bool sendTextCommand(const std::string& text);

    /// Sends two such texts as one command.
    virtual bool sendTextPairCommand(const std::string& first, const std::string& second);

  private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace com_qel::Orvane::Vantric
