// The command scan.
#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "ctl/Output.h"
#include "ctl/Request.h"

namespace vantricctl {

namespace {

using namespace com_qel::Orvane::Vantric;

// Names come last: no name can shift a column.
std::string tableOf(const std::vector<WifiListEntry>& networks) {
    std::string table = "SIGNAL  ENCRYPTION                    NAME\n";
    for (const WifiListEntry& network : networks) {
        char columns[64];
        std::snprintf(columns, sizeof(columns), "%6d  %-28s  ", network.signalLevel,
                      encryptionTypeName(network.encryptionType).c_str());
        table += columns + shown(fieldView(network.ssid)) + "\n";
    }
    return table;
}

}  // namespace

int scan(const Options& options) {
    publishedCopyOf(objectOf<ModemState>);  // there must be a server
    double seconds = 0;
    std::vector<WifiListEntry> networks = entriesOf(requestUpdate<WifiInfosList>(
        ModemCommand::RequestWifiList, options.timeoutSeconds, seconds));
    // Equally strong ones stay as the server lists them.
    std::stable_sort(networks.begin(), networks.end(),
                     [](const WifiListEntry& left, const WifiListEntry& right) {
                         return left.signalLevel > right.signalLevel;
                     });
    if (!options.asJson) {
        writeOutput(tableOf(networks));
        return statusDone;
    }
    Report report = {{"seconds", seconds}, {"networks", Report::array()}};
    for (const WifiListEntry& network : networks) {
        addFields(report["networks"].emplace_back(), &network, networkFields());
    }
    writeReport(report, true);
    return statusDone;
}

}  // namespace vantricctl
