// The command load-config.
#include <unistd.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "ctl/Output.h"
#include "ctl/Request.h"

namespace vantricctl {

namespace {

using namespace com_qel::Orvane::Vantric;

constexpr std::size_t longestFileName = 4000;
constexpr std::size_t longestHostname = 31;

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
void restoreNetwork(Request& request, const ModemState& before) {
    const std::string ssid = fieldText(before.wifiSsid);
    const std::string password = fieldText(before.wifiPassword);
    const int32_t type = before.wifiEncryptionType;
    request.send(ModemCommand::SetWifiSsid, ssid);
    request.send(ModemCommand::SetWifiPasswordAndEncryptionType,
                 std::to_string(type) + "," + password);
    const auto isShown = [&](const ModemState& state) {
        return fieldView(state.wifiSsid) == ssid && fieldView(state.wifiPassword) == password &&
               state.wifiEncryptionType == type;
    };
    request.follow([&] { return stateShows(isShown); });
}

}  // namespace

int loadConfig(const Options& options) {
    const std::string path = requireFile(options.file);
    if (options.expectedHostname) {
        requireLength("The host name", *options.expectedHostname, longestHostname);
    }
    const auto before = publishedRecord<ModemState>();
    Request request(options.timeoutSeconds);
    request.send(ModemCommand::SetConfig, path);
    // The state of the new configuration follows a time without one, or has another host name.
    std::string hostname;
    bool hasChanged = false;
    const bool isLoaded = request.follow([&] {
        const ObjectCopy copy = copyOf(objectOf<ModemState>);
        if (!copy.isPublished()) {
            hasChanged = true;
            return false;
        }
        hostname = fieldText(recordIn<ModemState>(copy).hostname);
        hasChanged = hasChanged || hostname != fieldView(before.hostname);
        return hasChanged && hostname == options.expectedHostname.value_or(hostname);
    });
    if (isLoaded && options.keepsWifi) {
        restoreNetwork(request, before);
    }
    Report report = {
        {"stage", request.stage()}, {"seconds", request.seconds()}, {"loaded", isLoaded}};
    addText(report, "hostname", hostname);
    writeReport(report, options.asJson);
    request.requireConfirmed(
        isLoaded ? " but not restored the network."
        : !hasChanged
            ? "; whether it has loaded the configuration cannot be told, because the state stayed "
              "readable and the host name is the same."
        : options.expectedHostname
            ? "; the host name is '" + shown(hostname) + "', not the expected one."
            : "; the state is not readable again.");
    return statusDone;
}

}  // namespace vantricctl
