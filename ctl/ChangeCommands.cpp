// The commands that ask for a change: switch, join, forget and load-config.
#include <unistd.h>

#include <filesystem>
#include <functional>

#include "ctl/Commands.h"
#include "ctl/Output.h"
#include "ctl/Request.h"
#include "ctl/ServerState.h"
#include "ctl/Text.h"

namespace vantricctl {

namespace {

using namespace com_qel::Orvane::Vantric;

constexpr std::size_t longestName = 32;
constexpr std::size_t longestPassword = 31;
constexpr std::size_t longestUserName = 255;
constexpr std::size_t longestFileName = 4000;
constexpr std::size_t longestHostname = 31;

// In the order of the types' numbers.
constexpr const char* encryptionNames[] = {
    "none", "wpa", "wpa2", "wpa-wpa2", "wpa-enterprise", "wpa2-enterprise", "wpa-wpa2-enterprise"};

struct Change {
    ModemCommand command;
    std::string payload;
    std::function<bool(const ModemState&)> isShown;  // by a published state
};

void requireLength(const char* what, const std::string& text, std::size_t longest) {
    if (text.empty() || text.size() > longest) {
        throw Failure(statusWrongUse, std::string(what) + " must have 1 to " +
                                          std::to_string(longest) + " bytes, not " +
                                          std::to_string(text.size()) + ".");
    }
}

// For a text that the exchange joins with others.
void requireNoComma(const char* what, const std::string& text) {
    if (text.find(',') != std::string::npos) {
        throw Failure(
            statusWrongUse,
            std::string(what) + " must not hold a comma, which the exchange cannot carry.");
    }
}

// Whether the server publishes a state that `isShown` accepts.
bool stateShows(const std::function<bool(const ModemState&)>& isShown) {
    const auto state = readPublication<ModemState>();
    return state.isPublished() && isShown(state.record);
}

// Sends the request, waits until the state shows the change, and prints how long it took; when the
// time is over, prints which stage was reached and throws.
int carryOut(const CommonOptions& options, const Change& change) {
    const bool wasShown = change.isShown(requirePublication<ModemState>().record);
    CommandChannel channel(options.timeoutSeconds);
    Wait wait(options.timeoutSeconds);
    channel.send(change.command, change.payload);
    const Stage stage = follow(channel, wait, [&] { return stateShows(change.isShown); });
    wait.finish();
    writeReport(
        {{"stage", stageName(stage)}, {"shownBefore", wasShown}, {"seconds", wait.seconds()}},
        options.asJson);
    if (stage != Stage::Confirmed) {
        throw timeOver(stage, wait);
    }
    return statusDone;
}

EncryptionType encryptionOf(const std::string& name) {
    std::string all;
    for (std::size_t type = 0; type < std::size(encryptionNames); ++type) {
        if (name == encryptionNames[type]) {
            return static_cast<EncryptionType>(type);
        }
        all += (type == 0 ? "" : ", ") + std::string(encryptionNames[type]);
    }
    throw Failure(statusWrongUse, "The encryption must be one of " + all + ".");
}

void requireUserName(const std::optional<std::string>& userName, bool isEnterprise) {
    if (userName.has_value() != isEnterprise) {
        throw Failure(statusWrongUse, isEnterprise
                                          ? "This encryption needs --username."
                                          : "--username is for the enterprise encryptions alone.");
    }
    if (userName) {
        requireLength("The user name", *userName, longestUserName);
        requireNoComma("The user name", *userName);
    }
}

// The server keeps the credentials of a network that it knows.
Change joinKnown(const JoinOptions& join) {
    requireUserName(join.userName, false);
    requireLength("The name", join.name, longestName);
    return {ModemCommand::SetWifiSsid, join.name, [name = join.name](const ModemState& state) {
                return fieldView(state.wifiSsid) == name;
            }};
}

Change joinNew(const JoinOptions& join, EncryptionType encryption) {
    const bool isEnterprise = encryption >= EncryptionType::WpaEnterprise;
    const auto type = static_cast<int32_t>(encryption);
    requireLength("The name", join.name, longestName);
    requireNoComma("The name", join.name);
    requireUserName(join.userName, isEnterprise);
    std::string password;
    if (encryption != EncryptionType::None) {
        password = readSecret("Password: ");
        requireLength("The password", password, longestPassword);
    }
    const std::string userName = isEnterprise ? *join.userName + "," : "";
    return {isEnterprise ? ModemCommand::SetWifiConnectionRadius : ModemCommand::SetWifiConnection,
            join.name + "," + std::to_string(type) + "," + userName + password,
            [=, name = join.name](const ModemState& state) {
                const auto connection = fieldView(state.wifiConnectionState);
                return fieldView(state.wifiSsid) == name && state.wifiEncryptionType == type &&
                       fieldView(state.wifiPassword) == password && !connection.empty() &&
                       connection != "N/A";
            }};
}

// Tells the state of the new configuration from that of the old one.
class Evidence {
  public:
    Evidence(const ModemState& before, std::optional<std::string> expectedHostname)
        : hostnameBefore_(fieldView(before.hostname)), expected_(std::move(expectedHostname)) {}

    // Reads the state; call it after the server took the request. True when the configuration is
    // loaded.
    bool isLoaded() {
        const auto state = readPublication<ModemState>();
        if (!state.isPublished()) {
            wasUnreadable_ = true;
            return false;
        }
        hostname_ = fieldView(state.record.hostname);
        return hasChanged() && (!expected_ || hostname_ == *expected_);
    }

    // Why the configuration does not count as loaded.
    std::string doubt() const {
        if (hasChanged()) {
            return expected_ ? "the host name is '" + shown(hostname_) + "', not the expected one."
                             : "the state is not readable again.";
        }
        return "whether it has loaded the configuration cannot be told, because the state stayed "
               "readable and the host name is the same.";
    }

    const std::string& hostname() const { return hostname_; }

  private:
    bool hasChanged() const { return wasUnreadable_ || hostname_ != hostnameBefore_; }

    const std::string hostnameBefore_;
    const std::optional<std::string> expected_;
    bool wasUnreadable_ = false;
    std::string hostname_;
};

std::string requireFile(const std::string& name) {
    if (access(name.c_str(), R_OK) != 0) {
        throw Failure(statusWrongUse, "The file '" + shown(name) + "' cannot be read.");
    }
    // The server works in another folder.
    std::string path = std::filesystem::absolute(name).string();
    requireLength("The file name", path, longestFileName);
    return path;
}

// Asks for the network of `before` again.
Stage restoreNetwork(CommandChannel& channel, Wait& wait, const ModemState& before) {
    const std::string ssid(fieldView(before.wifiSsid));
    const std::string password(fieldView(before.wifiPassword));
    const int32_t type = before.wifiEncryptionType;
    channel.send(ModemCommand::SetWifiSsid, ssid);
    channel.send(ModemCommand::SetWifiPasswordAndEncryptionType,
                 std::to_string(type) + "," + password);
    const auto isShown = [&](const ModemState& state) {
        return fieldView(state.wifiSsid) == ssid && fieldView(state.wifiPassword) == password &&
               state.wifiEncryptionType == type;
    };
    return follow(channel, wait, [&] { return stateShows(isShown); });
}

}  // namespace

int switchConnectivity(const CommonOptions& options, const std::string& target) {
    if (target != "wifi" && target != "carrier") {
        throw Failure(statusWrongUse, "The connectivity must be wifi or carrier.");
    }
    const bool isWifi = target == "wifi";
    const auto type = isWifi ? ConnectivityType::Wifi : ConnectivityType::Carrier;
    return carryOut(options, {isWifi ? ModemCommand::SwitchToWifi : ModemCommand::SwitchToCarrier,
                              "", [type](const ModemState& state) {
                                  return state.connectivityType == static_cast<int32_t>(type);
                              }});
}

int join(const CommonOptions& options, const JoinOptions& join) {
    return carryOut(
        options, join.encryption ? joinNew(join, encryptionOf(*join.encryption)) : joinKnown(join));
}

int forget(const CommonOptions& options) {
    return carryOut(
        options,
        {ModemCommand::SetWifiPasswordAndEncryptionType, "0,0", [](const ModemState& state) {
             return fieldView(state.wifiPassword).empty() && state.wifiEncryptionType == 0;
         }});
}

int loadConfig(const CommonOptions& options, const LoadOptions& load) {
    const std::string path = requireFile(load.file);
    if (load.expectedHostname) {
        requireLength("The host name", *load.expectedHostname, longestHostname);
    }
    const ModemState before = requirePublication<ModemState>().record;
    Evidence evidence(before, load.expectedHostname);
    CommandChannel channel(options.timeoutSeconds);
    Wait wait(options.timeoutSeconds);
    channel.send(ModemCommand::SetConfig, path);
    Stage stage = follow(channel, wait, [&] { return evidence.isLoaded(); });
    const bool isLoaded = stage == Stage::Confirmed;
    if (isLoaded && load.keepsWifi) {
        stage = restoreNetwork(channel, wait, before);
    }
    wait.finish();
    Report report = {
        {"stage", stageName(stage)}, {"seconds", wait.seconds()}, {"loaded", isLoaded}};
    addText(report, "hostname", evidence.hostname());
    writeReport(report, options.asJson);
    if (stage == Stage::Taken && !isLoaded) {
        throw Failure(statusTimeOver, "The time is over after " + secondsText(wait.seconds()) +
                                          ": the server has taken the request; " +
                                          evidence.doubt());
    }
    if (stage != Stage::Confirmed) {
        throw timeOver(stage, wait);
    }
    return statusDone;
}

}  // namespace vantricctl
