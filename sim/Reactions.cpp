#include "sim/Reactions.h"

#include <utility>

#include "sim/CommandTable.h"

namespace vantric_sim {

namespace {

using com_qel::Orvane::Vantric::ConnectivityType;
using com_qel::Orvane::Vantric::encryptionTypeName;

constexpr const char* noConnection = "N/A";

}  // namespace

struct Reactions::Entry {
    ModemCommand command;
    bool (Reactions::*receive)(std::string_view payload);
};

Reactions::Reactions(const Scenario& scenario, const Faults& faults, Publisher& publisher,
                     Schedule& schedule)
    : scenario_(scenario), faults_(faults), publisher_(publisher), schedule_(schedule) {}

bool Reactions::receive(uint32_t command, std::string_view payload, SteadyTime now) {
    static constexpr Entry table[] = {
        {ModemCommand::SwitchToWifi, &Reactions::switchToWifi},
        {ModemCommand::SwitchToCarrier, &Reactions::switchToCarrier},
        {ModemCommand::SetWifiSsid, &Reactions::joinNetwork},
        {ModemCommand::SetWifiPasswordAndEncryptionType, &Reactions::setEncryption},
        {ModemCommand::SetConfig, &Reactions::loadConfiguration},
        {ModemCommand::RequestWifiList, &Reactions::scan},
        {ModemCommand::RequestModemStatus, &Reactions::refresh},
        {ModemCommand::SetWifiConnection, &Reactions::connect},
        {ModemCommand::SetWifiConnectionRadius, &Reactions::connectByRadius},
    };
    now_ = now;
    for (const Entry& entry : table) {
        if (static_cast<uint32_t>(entry.command) == command) {
            return (this->*entry.receive)(payload);
        }
    }
    return true;
}

void Reactions::forgetPending() {
    schedule_.clear();
    configurationsLoading_ = 0;
    publisher_.stateIsReadable = true;
}

bool Reactions::switchToWifi(std::string_view payload) {
    return switchConnectivity(payload, static_cast<int32_t>(ConnectivityType::Wifi));
}

bool Reactions::switchToCarrier(std::string_view payload) {
    return switchConnectivity(payload, static_cast<int32_t>(ConnectivityType::Carrier));
}

bool Reactions::switchConnectivity(std::string_view payload, int32_t type) {
    if (!payload.empty()) {
        return false;
    }
    if (!faults_.switchIsStuck) {
        after(scenario_.delays.switchConnectivity, [this, type] {
            publisher_.state.connectivityType = type;
            publisher_.publishState();
        });
    }
    return true;
}

bool Reactions::joinNetwork(std::string_view payload) {
    after(scenario_.delays.joinNetwork, [this, ssid = std::string(payload)] {
        applySsid(ssid);
        publisher_.publishState();
        publisher_.publishExtended();
    });
    return true;
}

bool Reactions::setEncryption(std::string_view payload) {
    const auto encryption = parseEncryption(payload);
    if (!encryption) {
        return false;
    }
    after(scenario_.delays.setEncryption, [this, encryption = *encryption] {
        if (encryption.isRequestToForget()) {
            applyEncryption(0, "");
            setText(publisher_.state.wifiConnectionState, noConnection);
        } else {
            applyEncryption(encryption.type, encryption.password);
        }
        publisher_.publishState();
        publisher_.publishExtended();
    });
    return true;
}

bool Reactions::loadConfiguration(std::string_view payload) {
    const auto name = configurationName(payload);
    if (!name) {
        return false;
    }
    const Delays& delays = scenario_.delays;
    after(delays.configurationStart, [this] {
        ++configurationsLoading_;
        publisher_.stateIsReadable = false;
        publisher_.publishState();
    });
    const std::string hostname = scenario_.configurationHostname.value_or(*name);
    after(delays.configurationStart + delays.configurationLoad, [this, hostname] {
        --configurationsLoading_;
        publisher_.stateIsReadable = configurationsLoading_ == 0;
        setText(publisher_.state.hostname, hostname);
        publisher_.publishState();
    });
    return true;
}

bool Reactions::scan(std::string_view payload) {
    if (!payload.empty()) {
        return false;
    }
    after(scenario_.delays.scan, [this] { publisher_.scan(); });
    return true;
}

bool Reactions::refresh(std::string_view payload) {
    if (!payload.empty()) {
        return false;
    }
    after(scenario_.delays.refresh, [this] { publisher_.refreshExtended(); });
    return true;
}

bool Reactions::connect(std::string_view payload) {
    return connectTo(parseConnection(payload));
}

bool Reactions::connectByRadius(std::string_view payload) {
    return connectTo(parseRadiusConnection(payload));
}

bool Reactions::connectTo(const std::optional<Connection>& connection) {
    if (!connection) {
        return false;
    }
    after(scenario_.delays.connect, [this, connection = *connection] {
        applySsid(connection.ssid);
        applyEncryption(connection.encryption.type, connection.encryption.password);
        setText(publisher_.state.wifiConnectionState,
                scenario_.connectionState.value_or("Connected to " + connection.ssid));
        publisher_.publishState();
        publisher_.publishExtended();
    });
    return true;
}

void Reactions::applyEncryption(int32_t type, const std::string& password) {
    publisher_.state.wifiEncryptionType = type;
    setText(publisher_.state.wifiPassword, password);
    publisher_.extended.wifiEncryptionType = type;
    setText(publisher_.extended.wifiEncryptionName, encryptionTypeName(type));
}

void Reactions::applySsid(const std::string& ssid) {
    setText(publisher_.state.wifiSsid, ssid);
    setText(publisher_.extended.wifiSsid, ssid);
}

void Reactions::after(milliseconds delay, Schedule::Work work) {
    schedule_.add(now_ + delay, std::move(work));
}

}  // namespace vantric_sim
