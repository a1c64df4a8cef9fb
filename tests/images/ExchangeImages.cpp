#include "tests/images/ExchangeImages.h"

#include <memory>

#include "Vantric/ModemClient.h"
#include "Vantric/ModemClientC.h"

namespace vantric_test {

namespace {

using Vantric::ModemClient;
using Vantric::ClientServer::SharedMemoryModemCommands;

constexpr const char* commandsObject = "ModemCommandsShm";
constexpr uint32_t headerSize = 8;
constexpr uint32_t ringCapacity = 4096;

template <class Record>
Bytes bytesOfRecord(const Record& record) {
    const auto* first = reinterpret_cast<const unsigned char*>(&record);
    return Bytes(first, first + sizeof(record));
}

Bytes publishedState() {
    PublishedServer server;
    server.state.publish(imageState());
    return RawSegment("ModemStateShm").bytes();
}

Bytes publishedExtendedState() {
    PublishedServer server;
    server.extendedState.publish(imageExtendedState());
    return RawSegment("ModemStateEx").bytes();
}

Bytes publishedWifiList() {
    PublishedServer server;
    server.wifiList.publish(imageWifiList());
    return RawSegment("ModemWifiList").bytes();
}

Bytes attachedRing() {
    const SharedMemoryModemCommands consumer(true);
    const SharedMemoryModemCommands first(false);
    const SharedMemoryModemCommands second(false);
    return RawSegment(commandsObject).bytes();
}

Bytes framesOfEveryCommand() {
    const PublishedServer server;
    ModemClient client;
    client.connect();
    client.setConnectivityType(1);
    client.setConnectivityType(2);
    client.setWifiSSID("caf\xC3\xA9, upstairs");
    client.setWifiPasswordAndEncryptionType(3, "p,ss\xFF");
    client.setConfig("site.cfg");
    client.sendTextCommand("");
    client.sendTextPairCommand("one", "two");
    client.setWifiConnection("home", -1, "secret");
    client.setWifiConnectionRadius("office", 2147483647, "user", "secret");
    return RawSegment(commandsObject).bytes();
}

// A ring that has moved on by one frame of `moved` bytes and then took one of `payload` bytes.
Bytes ringWith(uint32_t moved, uint32_t payload) {
    SharedMemoryModemCommands consumer(true);
    SharedMemoryModemCommands producer(false);
    const Bytes first(moved - headerSize, 0x55);
    producer.enqueue(12, first.data(), static_cast<uint32_t>(first.size()));
    Bytes buffer(ringCapacity);
    auto size = static_cast<uint32_t>(buffer.size());
    uint32_t command = 0;
    consumer.dequeue(command, buffer.data(), &size);
    Bytes second(payload);
    for (std::size_t index = 0; index < second.size(); ++index) {
        second[index] = static_cast<unsigned char>(index);
    }
    producer.enqueue(0x80000007, second.data(), payload);
    return RawSegment(commandsObject).bytes();
}

Bytes ringWithASplitHeader() {
    return ringWith(ringCapacity - 3, 20);
}

Bytes fullRing() {
    return ringWith(1000, ringCapacity - headerSize);
}

Bytes ringAfterALostHeader() {
    SharedMemoryModemCommands consumer(true);
    SharedMemoryModemCommands producer(false);
    producer.enqueue(13, "first,second", 12);
    char small[4];
    uint32_t size = sizeof(small);
    uint32_t command = 0;
    consumer.dequeue(command, small, &size);
    return RawSegment(commandsObject).bytes();
}

// Calls the C interface while a server publishes what it was asked for.
template <class Query>
Bytes answered(Query query) {
    PublishedServer server;
    server.extendedState.publish(imageExtendedState());
    server.wifiList.publish(imageWifiList());
    const ModemClientHandle client = modemClientCreate();
    modemClientConnect(client);
    server.answer([&server](const Frame&) {
        Vantric::ModemStateExtended state = imageExtendedState();
        ++state.updateCounter;
        server.extendedState.publish(state);
        Vantric::WifiInfosList list = imageWifiList();
        ++list.updateCounter;
        server.wifiList.publish(list);
    });
    Bytes result = query(client);
    modemClientDestroy(client);
    return result;
}

Bytes statusOfTheCInterface() {
    return answered([](ModemClientHandle client) {
        ModemStatus status = {};
        return modemClientGetModemStatusBlocking(client, &status, 10) ? bytesOfRecord(status)
                                                                      : Bytes();
    });
}

Bytes networksOfTheCInterface() {
    return answered([](ModemClientHandle client) {
        WifiInfo networks[Vantric::WifiInfosList::maximumCount] = {};
        uint32_t count = Vantric::WifiInfosList::maximumCount;
        return modemClientGetWifiAvailableListBlocking(client, networks, &count, 10)
                   ? bytesOfRecord(networks)
                   : Bytes();
    });
}

}  // namespace

Vantric::ModemState imageState() {
    Vantric::ModemState state = {};
    state.timestamp = 0x7FEEDDCC;
    state.connectivityType = 1;
    setText(state.wifiSsid, "thirty-two bytes of a name \xE2\x82\xAC,.");
    setText(state.wifiPassword, "a password that fills its field!");
    state.wifiEncryptionType = -2;
    setText(state.hostname, "modem-17");
    setText(state.wifiConnectionState, "COMPLETED");
    return state;
}

Vantric::ModemStateExtended imageExtendedState() {
    return someExtendedState(-3);
}

Vantric::WifiInfosList imageWifiList() {
    std::vector<int32_t> levels(Vantric::WifiInfosList::maximumCount);
    for (std::size_t index = 0; index < levels.size(); ++index) {
        levels[index] = 40 - static_cast<int32_t>(index);
    }
    return wifiListOf(levels, 0x01020304);
}

Frames imageFrames() {
    return {{5, ""},
            {6, ""},
            {7, "caf\xC3\xA9, upstairs"},
            {8, "3,p,ss\xFF"},
            {9, "site.cfg"},
            {12, ""},
            {13, "one,two"},
            {14, "home,-1,secret"},
            {15, "office,2147483647,user,secret"}};
}

const std::vector<Image>& images() {
    static const std::vector<Image> all = {{"ModemStateShm.published", publishedState},
                                           {"ModemStateEx.published", publishedExtendedState},
                                           {"ModemWifiList.published", publishedWifiList},
                                           {"ModemCommandsShm.attached", attachedRing},
                                           {"ModemCommandsShm.frames", framesOfEveryCommand},
                                           {"ModemCommandsShm.split", ringWithASplitHeader},
                                           {"ModemCommandsShm.full", fullRing},
                                           {"ModemCommandsShm.header_lost", ringAfterALostHeader},
                                           {"ModemStatus", statusOfTheCInterface},
                                           {"WifiInfo", networksOfTheCInterface}};
    return all;
}

}  // namespace vantric_test
