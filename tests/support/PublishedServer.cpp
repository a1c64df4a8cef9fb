#include "tests/support/PublishedServer.h"

#include <chrono>
#include <filesystem>
#include <utility>

#include "tests/support/RawSegment.h"

namespace vantric_test {

namespace {

constexpr const char* sharedMemoryFolder = "/dev/shm";
constexpr const char* commandsObject = "ModemCommandsShm";

}  // namespace

int32_t secondsNow() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<int32_t>(std::chrono::duration_cast<std::chrono::seconds>(now).count());
}

Vantric::ModemState freshState() {
    Vantric::ModemState state = {};
    state.timestamp = secondsNow();
    state.connectivityType = 2;
    setText(state.wifiSsid, "home network");
    setText(state.wifiPassword, "secret");
    state.wifiEncryptionType = 3;
    setText(state.hostname, "modem-17");
    setText(state.wifiConnectionState, "COMPLETED");
    return state;
}

Vantric::ModemStateExtended someExtendedState(int32_t updateCounter) {
    Vantric::ModemStateExtended state = {};
    state.serverWord = 0x01020304;
    state.carrierSignalLevel = -71;
    setText(state.wifiSsid, "home network");
    state.wifiEncryptionType = 2;
    setText(state.wifiEncryptionName, "a name that only the server would give");
    state.wifiSignalLevel = 44;
    setText(state.ipv4Address, "192.168.100.200");
    setText(state.macAddress, "00:11:22:33:44:55");
    state.updateCounter = updateCounter;
    return state;
}

Vantric::WifiInfosList wifiListOf(const std::vector<int32_t>& signalLevels, int32_t updateCounter) {
    Vantric::WifiInfosList list = {};
    int32_t index = 0;
    for (const int32_t signalLevel : signalLevels) {
        Vantric::WifiListEntry& entry = list.entries[index];
        setText(entry.ssid, "network " + std::to_string(index));
        entry.encryptionType = index % 7;
        entry.signalLevel = signalLevel;
        ++index;
    }
    list.count = index;
    list.updateCounter = updateCounter;
    return list;
}

PublishedServer::~PublishedServer() {
    stop();
}

void PublishedServer::publishAt(int32_t timestamp) {
    Vantric::ModemState published = freshState();
    published.timestamp = timestamp;
    state.publish(published);
}

void PublishedServer::answer(Reaction reaction) {
    reaction_ = std::move(reaction);
    thread_ = std::thread([this] {
        while (!isStopping_) {
            if (takeFrame()) {
                reaction_(frames_.back());
            } else {
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
        }
    });
}

Frames PublishedServer::takeFrames() {
    stop();
    while (takeFrame()) {
    }
    return std::exchange(frames_, {});
}

bool PublishedServer::takeFrame() {
    char payload[4096];
    uint32_t size = sizeof(payload);
    Frame frame;
    const uint32_t untouched = size;
    if (!commands_.dequeue(frame.command, payload, &size)) {
        return false;
    }
    // A frame without payload leaves the size alone, and no payload is as large as the ring.
    if (size != untouched) {
        frame.payload.assign(payload, size);
    }
    frames_.push_back(frame);
    return true;
}

void PublishedServer::stop() {
    if (thread_.joinable()) {
        isStopping_ = true;
        thread_.join();
        isStopping_ = false;
    }
}

std::vector<std::string> sharedMemoryNames() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(sharedMemoryFolder)) {
        names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
}

uint32_t attachCount(const std::string& name) {
    return RawSegment(name).word(0);
}

uint32_t attachedProducers() {
    return RawSegment(commandsObject).word(8);
}

}  // namespace vantric_test
