#include "sim/CommandTable.h"

#include <charconv>
#include <filesystem>
#include <optional>
#include <string>

#include "sim/RecordFields.h"
#include "sim/SimulatedServer.h"

namespace vantric_sim {

namespace {

using com_qel::Orvane::Vantric::ConnectivityType;
using com_qel::Orvane::Vantric::encryptionTypeName;

// Fields are joined by "," without escaping. A field takes everything up to its comma and the last
// one the rest, so only the last may hold commas. Empty when there are fewer than `count`.
std::vector<std::string> fieldsOf(std::string_view payload, std::size_t count) {
    std::vector<std::string> fields;
    while (fields.size() + 1 < count) {
        const std::size_t comma = payload.find(',');
        if (comma == std::string_view::npos) {
            return {};
        }
        fields.emplace_back(payload.substr(0, comma));
        payload.remove_prefix(comma + 1);
    }
    fields.emplace_back(payload);
    return fields;
}

std::optional<int32_t> integerOf(const std::string& field) {
    const char* end = field.data() + field.size();
    int32_t value = 0;
    const auto [stop, error] = std::from_chars(field.data(), end, value);
    return error == std::errc() && stop == end ? std::optional(value) : std::nullopt;
}

void applyEncryption(Publisher& publisher, int32_t type, const std::string& password) {
    publisher.state.wifiEncryptionType = type;
    setText(publisher.state.wifiPassword, password);
    publisher.extended.wifiEncryptionType = type;
    setText(publisher.extended.wifiEncryptionName, encryptionTypeName(type));
}

void applySsid(Publisher& publisher, const std::string& ssid) {
    setText(publisher.state.wifiSsid, ssid);
    setText(publisher.extended.wifiSsid, ssid);
}

void publishStates(Publisher& publisher) {
    publisher.publishState();
    publisher.publishExtended();
}

template <ConnectivityType type>
bool switchConnectivity(SimulatedServer& server, std::string_view payload) {
    const auto change = [](Publisher& publisher) {
        publisher.state.connectivityType = static_cast<int32_t>(type);
        publisher.publishState();
    };
    return payload.empty() && (server.faults.switchIsStuck ||
                               server.after(server.scenario.delays.switchConnectivity, change));
}

bool joinNetwork(SimulatedServer& server, std::string_view payload) {
    return server.after(server.scenario.delays.joinNetwork,
                        [ssid = std::string(payload)](Publisher& publisher) {
                            applySsid(publisher, ssid);
                            publishStates(publisher);
                        });
}

bool setEncryption(SimulatedServer& server, std::string_view payload) {
    const std::vector<std::string> fields = fieldsOf(payload, 2);
    const auto type = fields.empty() ? std::nullopt : integerOf(fields[0]);
    const auto change = [=](Publisher& publisher) {
        // What clients send to have the network forgotten.
        const bool forgets = type == 0 && fields[1] == "0";
        applyEncryption(publisher, *type, forgets ? "" : fields[1]);
        if (forgets) {
            setText(publisher.state.wifiConnectionState, "N/A");
        }
        publishStates(publisher);
    };
    return type && server.after(server.scenario.delays.setEncryption, change);
}

// The host name that a configuration brings is its file's base name without extension.
bool loadConfiguration(SimulatedServer& server, std::string_view payload) {
    const std::string name = std::filesystem::path(payload).stem().string();
    const auto start = [](Publisher& publisher) {
        ++publisher.configurationsLoading;
        publisher.publishState();
    };
    const auto end =
        [hostname = server.scenario.configurationHostname.value_or(name)](Publisher& publisher) {
            --publisher.configurationsLoading;
            setText(publisher.state.hostname, hostname);
            publisher.publishState();
        };
    const Delays& delays = server.scenario.delays;
    return !name.empty() && server.after(delays.configurationStart, start) &&
           server.after(delays.configurationStart + delays.configurationLoad, end);
}

bool scan(SimulatedServer& server, std::string_view payload) {
    return payload.empty() && server.after(server.scenario.delays.scan, &Publisher::scan);
}

bool refresh(SimulatedServer& server, std::string_view payload) {
    return payload.empty() &&
           server.after(server.scenario.delays.refresh, &Publisher::refreshExtended);
}

// The name, the encryption type and, last, the password; a user name before it goes nowhere.
template <std::size_t fieldCount>
bool connect(SimulatedServer& server, std::string_view payload) {
    const std::vector<std::string> fields = fieldsOf(payload, fieldCount);
    const auto type = fields.empty() ? std::nullopt : integerOf(fields[1]);
    const auto change = [fields, type,
                         text = server.scenario.connectionState](Publisher& publisher) {
        applySsid(publisher, fields.front());
        applyEncryption(publisher, *type, fields.back());
        setText(publisher.state.wifiConnectionState,
                text.value_or("Connected to " + fields.front()));
        publishStates(publisher);
    };
    return type && server.after(server.scenario.delays.connect, change);
}

}  // namespace

bool reactTo(ModemCommand command, SimulatedServer& server, std::string_view payload) {
    switch (command) {
        case ModemCommand::SwitchToWifi:
            return switchConnectivity<ConnectivityType::Wifi>(server, payload);
        case ModemCommand::SwitchToCarrier:
            return switchConnectivity<ConnectivityType::Carrier>(server, payload);
        case ModemCommand::SetWifiSsid:
            return joinNetwork(server, payload);
        case ModemCommand::SetWifiPasswordAndEncryptionType:
            return setEncryption(server, payload);
        case ModemCommand::SetConfig:
            return loadConfiguration(server, payload);
        case ModemCommand::RequestWifiList:
            return scan(server, payload);
        case ModemCommand::RequestModemStatus:
            return refresh(server, payload);
        case ModemCommand::SendText:
        case ModemCommand::SendTextPair:
            return true;  // no effect
        case ModemCommand::SetWifiConnection:
            return connect<3>(server, payload);
        case ModemCommand::SetWifiConnectionRadius:
            return connect<4>(server, payload);
    }
    return true;
}

}  // namespace vantric_sim
