#include "bench/peers/PrivateBus.h"

#include <unistd.h>

#include <cstring>
#include <stdexcept>

#include "tests/support/Polling.h"

namespace vantric_bench {

namespace {

using com_qel::Orvane::Vantric::ModemState;

void require(int result, const char* step) {
    if (result < 0) {
        throw std::runtime_error(std::string("the bus fails: ") + step);
    }
}

// What the service's callbacks need.
struct Service {
    ModemState state;
    std::string expectedPayload;
    std::atomic<int>* commandCount;
};

int getState(sd_bus* /*bus*/, const char* /*path*/, const char* /*interface*/,
             const char* /*property*/, sd_bus_message* reply, void* userData,
             sd_bus_error* /*error*/) {
    const auto& service = *static_cast<const Service*>(userData);
    return sd_bus_message_append_array(reply, 'y', &service.state, sizeof(service.state));
}

int takeCommand(sd_bus_message* call, void* userData, sd_bus_error* /*error*/) {
    auto& service = *static_cast<Service*>(userData);
    uint32_t command = 0;
    const void* payload = nullptr;
    std::size_t size = 0;
    if (sd_bus_message_read(call, "u", &command) >= 0 &&
        sd_bus_message_read_array(call, 'y', &payload, &size) >= 0 &&
        size == service.expectedPayload.size() &&
        std::memcmp(payload, service.expectedPayload.data(), size) == 0) {
        ++*service.commandCount;
    }
    return sd_bus_reply_method_return(call, "");
}

const sd_bus_vtable serviceTable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_PROPERTY("State", "ay", getState, 0, SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE),
    SD_BUS_METHOD("Command", "uay", "", takeCommand, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

}  // namespace

PrivateBus::PrivateBus(const ModemState& published, const std::string& expectedPayload) {
    startDaemon();
    service_ = std::make_unique<ForkedProcess>([&] { serve(published, expectedPayload); });
    connection_ = connect();
    const bool isThere = connection_ != nullptr && vantric_test::eventually([this] {
                             return sd_bus_get_name_creds(connection_, busService, 0, nullptr) >= 0;
                         });
    require(isThere ? 0 : -1, "its service does not start");
}

PrivateBus::~PrivateBus() {
    sd_bus_flush_close_unref(connection_);
}

void PrivateBus::startDaemon() {
    const std::string configuration = folder_.write(
        "bus.conf", "<busconfig><type>session</type><listen>unix:path=" + (folder_ / "socket") +
                        "</listen><auth>EXTERNAL</auth><policy context='default'>"
                        "<allow send_destination='*' eavesdrop='true'/><allow eavesdrop='true'/>"
                        "<allow own='*'/></policy></busconfig>");
    daemon_ = std::make_unique<ForkedProcess>([&] {
        const std::string option = "--config-file=" + configuration;
        execlp("dbus-daemon", "dbus-daemon", option.c_str(), "--nofork", nullptr);
    });
}

sd_bus* PrivateBus::connect() const {
    const std::string address = "unix:path=" + (folder_ / "socket");
    sd_bus* bus = nullptr;
    vantric_test::eventually([&] {
        bus = sd_bus_unref(bus);
        return sd_bus_new(&bus) >= 0 && sd_bus_set_address(bus, address.c_str()) >= 0 &&
               sd_bus_set_bus_client(bus, 1) >= 0 && sd_bus_start(bus) >= 0;
    });
    return bus;
}

void PrivateBus::serve(const ModemState& published, const std::string& expectedPayload) const {
    Service service = {published, expectedPayload, &received_->commands};
    sd_bus* bus = connect();
    require(sd_bus_add_object_vtable(bus, nullptr, busObject, busInterface, serviceTable, &service),
            "the service's object");
    require(sd_bus_request_name(bus, busService, 0), "the service's name");
    while (true) {
        const int processed = sd_bus_process(bus, nullptr);
        require(processed, "the service's loop");
        if (processed == 0) {
            require(sd_bus_wait(bus, UINT64_MAX), "the service's wait");
        }
    }
}

}  // namespace vantric_bench
