#include "Vantric/ModemClient.h"

#include <time.h>

#include <algorithm>
#include <exception>
#include <limits>
#include <stdexcept>

#include "CoreMisc/src/VyLog.h"
#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "Vantric/ClientServer/SharedMemoryModemState.h"
#include "Vantric/StateReader.h"
#include "Vantric/Utils/ImmortalKeeper.h"
#include "Vantric/Utils/Waiting.h"

namespace com_qel::Orvane::Vantric {

namespace {

using ClientServer::ModemCommand;

constexpr const char* sourceFile = "Vantric/ModemClient";
constexpr int64_t stalenessLimitSeconds = 300;

// A log that cannot be configured (out of memory) loses the record: no exception leaves the client.
void logError(int line, const char* text, const std::exception& error) noexcept {
    try {
        VyLog(VyLog::Error, sourceFile, line, 0).append(text).append(error.what());
    } catch (const std::exception&) {
        return;
    }
}

// Runs `action`; its std::exceptions count as failure.
template <class Action>
bool succeeds(Action action) {
    try {
        return action();
    } catch (const std::exception&) {
        return false;
    }
}

// Since the epoch. After January 2038 a 32-bit C library cannot tell the time; whatever was
// published is old then.
int64_t wallClockSeconds() {
    constexpr int64_t afterEverything = std::numeric_limits<int64_t>::max() / 2;
    timespec now = {};
    return clock_gettime(CLOCK_REALTIME, &now) == 0 ? now.tv_sec : afterEverything;
}

void requireFresh(const ModemState& state) {
    if (wallClockSeconds() - state.timestamp > stalenessLimitSeconds) {
        throw std::runtime_error("SharedMemoryModemState is stale.");
    }
}

const std::string& textOf(const std::string& field) {
    return field;
}

std::string textOf(int32_t field) {
    return std::to_string(field);
}

// A command's payload: its fields as texts, joined. A field that contains the separator is not
// escaped. A single text is the payload as it stands, without a copy.
std::string joined() {
    return {};
}

const std::string& joined(const std::string& only) {
    return only;
}

template <class... Fields>
std::string joined(const std::string& first, const Fields&... others) {
    std::string payload;
    payload.reserve((first.size() + ... + (1 + others.size())));
    payload += first;
    ((payload += ',', payload += others), ...);
    return payload;
}

}  // namespace

struct ModemClient::Implementation {
    // Destroyed from the last to the first.
    StateReader<ModemState> state{"SharedMemoryModemState is not connected.",
                                  "Failed to read from shared memory."};
    StateReader<ModemStateExtended> extendedState{
        "SharedMemoryModemStateExtended is not connected.",
        "Failed to read ModemStateExtended from shared memory."};
    // This reader has no wording of its own for a missing connection.
    StateReader<WifiInfosList> wifiList{"SharedMemoryModemState is not connected.",
                                        "Failed to read Wifi list from shared memory."};
    std::unique_ptr<ClientServer::SharedMemoryModemCommands> commands;

    ModemState readModemState() {
        ModemState record;
        state.read(record, requireFresh);
        return record;
    }

    // Queues `command` with `fields`, texts or numbers. Fails while not connected and when memory
    // runs out.
    template <class... Fields>
    bool send(ModemCommand command, const Fields&... fields) {
        return succeeds([&] { return sendPayload(command, joined(textOf(fields)...)); });
    }

    bool sendPayload(ModemCommand command, const std::string& payload) {
        // The channel drops what exceeds its ring, and must not see the size modulo 2^32.
        const auto size = static_cast<uint32_t>(std::min<std::size_t>(payload.size(), UINT32_MAX));
        return commands != nullptr &&
               commands->enqueue(static_cast<uint32_t>(command), payload.data(), size);
    }

    // Sends `command` and waits until the server has refreshed the record that `reader` reads.
    // The deadline is checked before each sleep, so the last poll may come one interval after it
    // and still count.
    template <class T>
    bool refresh(ModemCommand command, StateReader<T>& reader, uint32_t timeoutSeconds, T& record) {
        reader.read(record);
        const int32_t previousCounter = record.updateCounter;
        if (!send(command)) {
            return false;
        }
        const Deadline deadline(timeoutSeconds);
        bool isInTime = true;
        while (isInTime) {
            isInTime = !deadline.hasPassed();
            sleepForPollInterval();
            reader.read(record);
            if (record.updateCounter != previousCounter) {
                return isInTime;
            }
        }
        return false;
    }
};

ModemClient::ModemClient() : implementation_(std::make_unique<Implementation>()) {}

ModemClient::~ModemClient() = default;

bool ModemClient::connect() {
    try {
        using namespace ClientServer;
        implementation_->state.connect(std::make_unique<SharedMemoryModemState>());
        implementation_->extendedState.connect(std::make_unique<SharedMemoryModemStateExtended>());
        implementation_->wifiList.connect(std::make_unique<SharedMemoryWifiList>());
        implementation_->commands = std::make_unique<SharedMemoryModemCommands>(false);
        return true;
    } catch (const std::exception& error) {
        logError(__LINE__, "Failed to connect to shared memory, error: ", error);
        return false;
    }
}

bool ModemClient::disconnect() {
    keepUntilProcessEnds(implementation_->state.disconnect().release());
    keepUntilProcessEnds(implementation_->extendedState.disconnect().release());
    keepUntilProcessEnds(implementation_->wifiList.disconnect().release());
    keepUntilProcessEnds(implementation_->commands.release());
    return true;
}

bool ModemClient::getConnectivityType(int32_t& type) {
    return succeeds([&] {
        type = implementation_->readModemState().connectivityType;
        return true;
    });
}

bool ModemClient::setConnectivityType(int32_t type) {
    switch (static_cast<ConnectivityType>(type)) {
        case ConnectivityType::None:
            return true;
        case ConnectivityType::Wifi:
            return implementation_->send(ModemCommand::SwitchToWifi);
        case ConnectivityType::Carrier:
            return implementation_->send(ModemCommand::SwitchToCarrier);
    }
    return false;
}

bool ModemClient::getWifiSSID(std::string& ssid) {
    return succeeds([&] {
        ssid = fieldView(implementation_->readModemState().wifiSsid);
        return true;
    });
}

bool ModemClient::setWifiSSID(const std::string& ssid) {
    return implementation_->send(ModemCommand::SetWifiSsid, ssid);
}

bool ModemClient::getWifiAvailableListBlocking(std::vector<WifiInfo>& list,
                                               uint32_t timeoutSeconds) {
    return succeeds([&] {
        WifiInfosList found;
        if (!implementation_->refresh(ModemCommand::RequestWifiList, implementation_->wifiList,
                                      timeoutSeconds, found)) {
            return false;
        }
        const int32_t count =
            std::clamp<int32_t>(int32_t{found.count}, 0, WifiInfosList::maximumCount);
        list.reserve(static_cast<std::size_t>(count));
        list.clear();
        for (int32_t index = 0; index < count; ++index) {
            list.push_back(makeWifiInfo(found.entries[index]));
        }
        std::sort(list.begin(), list.end(), [](const WifiInfo& left, const WifiInfo& right) {
            return left.signalLevel > right.signalLevel;
        });
        return true;
    });
}

bool ModemClient::getModemStatusBlocking(ModemStatus& status, uint32_t timeoutSeconds) {
    return succeeds([&] {
        ModemStateExtended state;
        if (!implementation_->refresh(ModemCommand::RequestModemStatus,
                                      implementation_->extendedState, timeoutSeconds, state)) {
            return false;
        }
        status = makeModemStatus(state);
        return true;
    });
}

bool ModemClient::getWifiPasswordAndEncryptionType(int32_t& encryptionType, std::string& password) {
    try {
        password = fieldView(implementation_->readModemState().wifiPassword);
        encryptionType = implementation_->readModemState().wifiEncryptionType;
        return true;
    } catch (const std::exception& error) {
        logError(__LINE__, "Failed to get modem wifi password and encryption type, error: ", error);
        return false;
    }
}

bool ModemClient::setWifiPasswordAndEncryptionType(const int32_t& encryptionType,
                                                   const std::string& password) {
    return implementation_->send(ModemCommand::SetWifiPasswordAndEncryptionType, encryptionType,
                                 password);
}

bool ModemClient::setWifiConnection(const std::string& ssid, const int32_t& encryptionType,
                                    const std::string& password) {
    return implementation_->send(ModemCommand::SetWifiConnection, ssid, encryptionType, password);
}

bool ModemClient::setWifiConnectionRadius(const std::string& ssid, const int32_t& encryptionType,
                                          const std::string& username,
                                          const std::string& password) {
    return implementation_->send(ModemCommand::SetWifiConnectionRadius, ssid, encryptionType,
                                 username, password);
}

bool ModemClient::getHostname(std::string& hostname) {
    try {
        hostname = fieldView(implementation_->readModemState().hostname);
        return true;
    } catch (const std::exception& error) {
        logError(__LINE__, "Failed to get modem Hostname, error: ", error);
        return false;
    }
}

bool ModemClient::setConfig(const std::string& configFilename) {
    return implementation_->send(ModemCommand::SetConfig, configFilename);
}

bool ModemClient::getWifiConnectionState(std::string& state) {
    return succeeds([&] {
        state = fieldView(implementation_->readModemState().wifiConnectionState);
        return true;
    });
}

bool ModemClient::sendTextCommand(const std::string& text) {
    return implementation_->send(ModemCommand::SendText, text);
}

bool ModemClient::sendTextPairCommand(const std::string& first, const std::string& second) {
    return implementation_->send(ModemCommand::SendTextPair, first, second);
}

}  // namespace com_qel::Orvane::Vantric
