// D-Bus, over a private daemon: the state as a property, commands as calls of a method. A service
// process publishes the one and answers the other.
#include <unistd.h>

#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <systemd/sd-bus.h>

#include "bench/ForkedProcess.h"
#include "bench/Operation.h"
#include "bench/floors/RecordFloor.h"
#include "bench/peers/PeerMessage.h"
#include "tests/support/Polling.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/TemporaryFolder.h"

namespace vantric_bench {

namespace {

using com_qel::Orvane::Vantric::ModemState;

constexpr const char* serviceName = "org.vantric.bench";
constexpr const char* objectPath = "/org/vantric/bench";
constexpr const char* interfaceName = "org.vantric.bench.Modem";

void require(int result, const char* step) {
    if (result < 0) {
        throw std::runtime_error(std::string("the bus fails: ") + step);
    }
}

int getState(sd_bus* /*bus*/, const char* /*path*/, const char* /*interface*/,
             const char* /*property*/, sd_bus_message* reply, void* state,
             sd_bus_error* /*error*/) {
    return sd_bus_message_append_array(reply, 'y', state, sizeof(ModemState));
}

// Answers a command that arrived as sent; any other fails at the caller.
int takeCommand(sd_bus_message* call, void* /*state*/, sd_bus_error* /*error*/) {
    const PeerMessage sent;
    uint32_t command = 0;
    const void* payload = nullptr;
    std::size_t size = 0;
    const bool isIntact = sd_bus_message_read(call, "u", &command) >= 0 &&
                          sd_bus_message_read_array(call, 'y', &payload, &size) >= 0 &&
                          command == sent.command && size == sizeof(sent.payload) &&
                          std::memcmp(payload, sent.payload, size) == 0;
    return isIntact ? sd_bus_reply_method_return(call, "") : -EBADMSG;
}

const sd_bus_vtable serviceTable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_PROPERTY("State", "ay", getState, 0, SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE),
    SD_BUS_METHOD("Command", "uay", "", takeCommand, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

class PrivateBus {
  public:
    PrivateBus() {
        const bool isThere =
            connection_ != nullptr && vantric_test::eventually([this] {
                return sd_bus_get_name_creds(connection_, serviceName, 0, nullptr) >= 0;
            });
        require(isThere ? 0 : -1, "its service does not start");
    }
    ~PrivateBus() { sd_bus_flush_close_unref(connection_); }
    PrivateBus& operator=(PrivateBus&&) = delete;

    bool readState(ModemState& record) {
        sd_bus_message* reply = nullptr;
        const void* bytes = nullptr;
        std::size_t size = 0;
        const bool isRead = sd_bus_get_property(connection_, serviceName, objectPath, interfaceName,
                                                "State", nullptr, &reply, "ay") >= 0 &&
                            sd_bus_message_read_array(reply, 'y', &bytes, &size) >= 0 &&
                            size == sizeof(record);
        if (isRead) {
            std::memcpy(static_cast<void*>(&record), bytes, size);
        }
        sd_bus_message_unref(reply);
        return isRead && isFresh(record);
    }

    bool sendCommand(const PeerMessage& message) {
        sd_bus_message* call = nullptr;
        const bool isSent =
            sd_bus_message_new_method_call(connection_, &call, serviceName, objectPath,
                                           interfaceName, "Command") >= 0 &&
            sd_bus_message_append(call, "u", message.command) >= 0 &&
            sd_bus_message_append_array(call, 'y', message.payload, sizeof(message.payload)) >= 0 &&
            sd_bus_call(connection_, call, 0, nullptr, nullptr) >= 0;
        sd_bus_message_unref(call);
        return isSent;
    }

  private:
    std::string socket() const { return "unix:path=" + (folder_ / "socket"); }

    void runDaemon() const {
        const std::string option =
            "--config-file=" +
            folder_.write("bus.conf", "<busconfig><type>session</type><listen>" + socket() +
                                          "</listen><auth>EXTERNAL</auth>"
                                          "<policy context='default'><allow send_destination='*' "
                                          "eavesdrop='true'/><allow eavesdrop='true'/>"
                                          "<allow own='*'/></policy></busconfig>");
        execlp("dbus-daemon", "dbus-daemon", option.c_str(), "--nofork", nullptr);
    }

    void serve() const {
        ModemState state = vantric_test::freshState();
        sd_bus* bus = connect();
        require(
            sd_bus_add_object_vtable(bus, nullptr, objectPath, interfaceName, serviceTable, &state),
            "the object of the service");
        require(sd_bus_request_name(bus, serviceName, 0), "the name of the service");
        while (true) {
            const int processed = sd_bus_process(bus, nullptr);
            require(processed, "the loop of the service");
            if (processed == 0) {
                require(sd_bus_wait(bus, UINT64_MAX), "the wait of the service");
            }
        }
    }

    sd_bus* connect() const {
        sd_bus* bus = nullptr;
        vantric_test::eventually([&] {
            bus = sd_bus_unref(bus);
            return sd_bus_new(&bus) >= 0 && sd_bus_set_address(bus, socket().c_str()) >= 0 &&
                   sd_bus_set_bus_client(bus, 1) >= 0 && sd_bus_start(bus) >= 0;
        });
        return bus;
    }

    vantric_test::TemporaryFolder folder_;
    ForkedProcess daemon_{[this] { runDaemon(); }};
    ForkedProcess service_{[this] { serve(); }};
    sd_bus* connection_ = connect();
};

Repetition query() {
    auto bus = std::make_shared<PrivateBus>();
    auto record = std::make_shared<ModemState>();
    return repeat([=] { return bus->readState(*record); });
}

Repetition enqueue() {
    auto bus = std::make_shared<PrivateBus>();
    return repeat([=] { return bus->sendCommand(PeerMessage()); });
}

}  // namespace

Operations busPeers() {
    return {
        {stateRow, peerRole, "D-Bus", query},
        {enqueueRow, peerRole, "D-Bus", enqueue},
    };
}

}  // namespace vantric_bench
