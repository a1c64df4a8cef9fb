// The calls that the state records' target makes, and what they share: the clients, what is
// published to them, and what they have to answer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "Vantric/ModemClient.h"
#include "Vantric/ModemClientC.h"
#include "fuzz/Broadcast.h"
#include "fuzz/ExpectedClient.h"
#include "fuzz/WholeObject.h"

namespace vantric_fuzz {

// Both kinds of client, connected once; the objects' bytes are what changes.
class Clients {
  public:
    Clients();

    // Never released.
    static Clients& instance();

    void publish(const Publication& publication);

    // Whether the objects hold just that, and nothing has been written behind them.
    bool seeUnchanged(const Publication& publication) const;

    com_qel::Orvane::Vantric::ModemClient client;
    ModemClientHandle handle = modemClientCreate();

  private:
    // Behind the count of attachments.
    static constexpr std::size_t segmentOffset = 4;

    // Before the objects, which attaching creates.
    const bool isConnected_ = client.connect() && modemClientConnect(handle);
    WholeObject state_{"ModemStateShm", 153};
    WholeObject extended_{"ModemStateEx", 168};
    WholeObject list_{"ModemWifiList", 4120};
};

// One input's run: what the server does, and what the clients must answer.
struct Session {
    explicit Session(std::vector<Publication> publications, int64_t now)
        : broadcast(publications, now), expectation(std::move(publications), now) {}

    Broadcast broadcast;    // as the clients meet it
    Broadcast expectation;  // as the expected clients play it through
    ExpectedClient plain{expectation};
    ExpectedClient viaC{expectation};
};

// Each makes one call, plays it through and compares the two. The argument is timeout and size.
void getConnectivityType(Session& session, unsigned int argument);
void getWifiSsid(Session& session, unsigned int argument);
void getHostname(Session& session, unsigned int argument);
void getConnectionState(Session& session, unsigned int argument);
void getPassword(Session& session, unsigned int argument);
void getList(Session& session, unsigned int argument);
void getStatus(Session& session, unsigned int argument);

// The same through the C interface.
void getListByC(Session& session, unsigned int argument);
void getStatusByC(Session& session, unsigned int argument);
void getWifiSsidByC(Session& session, unsigned int argument);
void forgetByC(Session& session, unsigned int argument);
void connectByC(Session& session, unsigned int argument);
void connectRadiusByC(Session& session, unsigned int argument);

// What a query may hand out: these networks, strongest first.
void requireNetworks(const std::vector<Bytes>& expected, const WifiInfo* found, std::size_t count);

// And this status; on failure one that still has the bytes of untouchedStatus().
ModemStatus untouchedStatus();
void requireStatus(const std::optional<Bytes>& expected, bool isSuccess, const ModemStatus& status);

}  // namespace vantric_fuzz
