// The commands that print what the server publishes: status, scan and watch.
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <map>
#include <vector>

#include "ctl/Commands.h"
#include "ctl/Output.h"
#include "ctl/Request.h"
#include "ctl/ServerState.h"
#include "ctl/Text.h"

namespace vantricctl {

namespace {

using namespace com_qel::Orvane::Vantric;

template <class Record>
struct Update {
    Record record;
    double seconds;  // from the request to the record
};

// Requests a record and waits until its update counter has changed.
template <class Record>
Update<Record> requestUpdate(ModemCommand command, uint32_t timeoutSeconds) {
    const int32_t before = requirePublication<Record>().record.updateCounter;
    CommandChannel channel(timeoutSeconds);
    Wait wait(timeoutSeconds);
    channel.send(command);
    Record record;
    const Stage stage = follow(channel, wait, [&] {
        const auto publication = readPublication<Record>();
        record = publication.record;
        return publication.isPublished() && record.updateCounter != before;
    });
    if (stage != Stage::Confirmed) {
        throw timeOver(stage, wait);
    }
    return {record, wait.seconds()};
}

// Strongest first; equally strong ones as the server lists them.
std::vector<WifiListEntry> networksOf(const WifiInfosList& list) {
    std::vector<WifiListEntry> networks(list.entries, list.entries + entryCount(list));
    std::stable_sort(networks.begin(), networks.end(),
                     [](const WifiListEntry& left, const WifiListEntry& right) {
                         return left.signalLevel > right.signalLevel;
                     });
    return networks;
}

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

// The condition, and the fields of a state that has any, as bytes by name.
std::vector<std::pair<std::string, std::string>> itemsOf(const Publication<ModemState>& state) {
    std::vector<std::pair<std::string, std::string>> items = {
        {"state", conditionName(state.condition)}};
    if (state.isPublished()) {
        Report report;
        addFields(report, &state.record, stateFields());
        for (const char* key :
             {"connectivity", "wifiSsid", "wifiEncryption", "hostname", "wifiConnectionState"}) {
            items.emplace_back(key, report[key].get<std::string>());
        }
    }
    return items;
}

void writeItem(const std::string& name, const std::string& value, bool asJson) {
    const std::time_t now = std::time(nullptr);
    std::tm parts = {};
    gmtime_r(&now, &parts);
    char time[32];
    std::strftime(time, sizeof(time), "%Y-%m-%dT%H:%M:%SZ", &parts);
    if (!asJson) {
        writeOutput(time + (" " + name) + ": " + shown(value) + "\n");
        return;
    }
    Report report = {{"time", time}, {"item", name}};
    addText(report, "value", value);
    writeReport(report, true);
}

}  // namespace

int showStatus(const CommonOptions& options, bool isRefreshed) {
    requirePublication<ModemState>();
    const ModemStateExtended extended =
        isRefreshed ? requestUpdate<ModemStateExtended>(ModemCommand::RequestModemStatus,
                                                        options.timeoutSeconds)
                          .record
                    : requirePublication<ModemStateExtended>().record;
    const auto state = requirePublication<ModemState>();
    Report report;
    report["ageSeconds"] = state.ageSeconds;
    addFields(report, &state.record, stateFields());
    report.erase("wifiPassword");
    report["refreshed"] = isRefreshed;
    addFields(report["extended"], &extended, extendedFields());
    writeReport(report, options.asJson);
    return statusDone;
}

int scan(const CommonOptions& options) {
    requirePublication<ModemState>();
    const auto update =
        requestUpdate<WifiInfosList>(ModemCommand::RequestWifiList, options.timeoutSeconds);
    const std::vector<WifiListEntry> networks = networksOf(update.record);
    if (!options.asJson) {
        writeOutput(tableOf(networks));
        return statusDone;
    }
    Report report = {{"seconds", update.seconds}, {"networks", Report::array()}};
    for (const WifiListEntry& network : networks) {
        addFields(report["networks"].emplace_back(), &network, networkFields());
    }
    writeReport(report, true);
    return statusDone;
}

int watch(const CommonOptions& options) {
    const auto first = readPublication<ModemState>();
    if (first.condition == Condition::Absent || first.condition == Condition::Invalid) {
        requirePublication<ModemState>();
    }
    Wait wait(options.timeoutSeconds, Wait::Countdown::None);
    std::map<std::string, std::string> known;
    do {
        for (const auto& [name, value] : itemsOf(readPublication<ModemState>())) {
            const auto [entry, isNew] = known.emplace(name, value);
            if (isNew || entry->second != value) {
                entry->second = value;
                writeItem(name, value, options.asJson);
            }
        }
    } while (wait.next());
    return statusTimeOver;
}

}  // namespace vantricctl
