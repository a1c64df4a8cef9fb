// Clients of a server that publishes arbitrary bytes: every query through the class and through the
// C interface answers as the published bytes demand, ends in time and writes nothing else.
//
// Input: number of publications (byte), that many publications, then calls (kind, argument). Each
// sleep of a blocking call brings the next publication.
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/Input.h"
#include "fuzz/SimulatedTime.h"
#include "fuzz/StateCalls.h"
#include "fuzz/Target.h"

namespace vantric_fuzz {

Clients::Clients() {
    require(isConnected_, "clients connect");
}

Clients& Clients::instance() {
    static Clients& clients = *new Clients;
    return clients;
}

void Clients::publish(const Publication& publication) {
    state_.write(segmentOffset, publication.state.bytes);
    extended_.write(segmentOffset, publication.extended.bytes);
    list_.write(segmentOffset, publication.list.bytes);
}

bool Clients::seeUnchanged(const Publication& publication) const {
    return state_.holds(segmentOffset, publication.state.bytes) &&
           extended_.holds(segmentOffset, publication.extended.bytes) &&
           list_.holds(segmentOffset, publication.list.bytes) && state_.isTailUntouched() &&
           extended_.isTailUntouched() && list_.isTailUntouched();
}

namespace {

constexpr std::size_t mostPublications = 4;
constexpr int mostCalls = 24;

void goOn(Session& session, unsigned int) {
    session.broadcast.goOn();
    session.expectation.goOn();
    Clients::instance().publish(session.broadcast.current());
}

using Call = void (*)(Session& session, unsigned int argument);
constexpr Call calls[] = {
    getConnectivityType, getWifiSsid, getHostname,  getConnectionState, getPassword, getList,
    getListByC,          getStatus,   getStatusByC, getWifiSsidByC,     forgetByC,   connectByC,
    connectRadiusByC,    goOn};
constexpr std::size_t callCount = sizeof(calls) / sizeof(calls[0]);

// Successful reads of all segments make the clients forget earlier failures.
void resetClients(int64_t now) {
    Clients::instance().publish(plainPublication(now));
    std::string hostname;
    char byte = 0;
    uint32_t size = 1;
    std::vector<WifiInfo> list;
    ModemStatus status;
    WifiInfo network;
    Clients::instance().client.getHostname(hostname);
    Clients::instance().client.getWifiAvailableListBlocking(list, 0);
    Clients::instance().client.getModemStatusBlocking(status, 0);
    modemClientGetWifiSSID(Clients::instance().handle, &byte, &size);
    modemClientGetWifiAvailableListBlocking(Clients::instance().handle, &network, &size, 0);
    modemClientGetModemStatusBlocking(Clients::instance().handle, &status, 0);
}

std::vector<Publication> readPublications(Input& input, int64_t now) {
    std::vector<Publication> publications;
    for (std::size_t left = 1 + input.byte() % mostPublications; left > 0; --left) {
        publications.push_back(readPublication(input, now));
    }
    return publications;
}

}  // namespace

}  // namespace vantric_fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    using namespace vantric_fuzz;
    Session* running = nullptr;
    const SimulatedTime time([&running] {
        if (running != nullptr) {
            running->broadcast.goOn();
            Clients::instance().publish(running->broadcast.current());
        }
    });
    resetClients(time.wallSeconds());

    Input input(data, size);
    Session session(readPublications(input, time.wallSeconds()), time.wallSeconds());
    running = &session;
    Clients::instance().publish(session.broadcast.current());
    for (int count = 0; !input.isEmpty() && count < mostCalls; ++count) {
        const Call call = calls[input.byte() % callCount];
        call(session, input.byte());
        require(session.broadcast.index() == session.expectation.index(),
                "a blocking call looks as often as it has to");
        require(Clients::instance().seeUnchanged(session.broadcast.current()), "clients only read");
    }
    return 0;
}
