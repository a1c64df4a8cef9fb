// The command watch.
#include <ctime>
#include <map>

#include "ctl/Output.h"
#include "ctl/Request.h"

namespace vantricctl {

namespace {

// The condition, and the texts of a state that has any.
Report itemsOf(const ObjectCopy& copy) {
    Report items;
    items.add("state", conditionName(copy.condition));
    if (copy.isPublished()) {
        const auto state = recordIn<ModemState>(copy);
        items.addFields(&state, com_qel::Orvane::Vantric::stateFields());
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
    Report report;
    report.add("time", time);
    report.add("item", name);
    report.addText("value", value);
    writeReport(report, true);
}

}  // namespace

int watch(const Options& options) {
    const Condition first = copyOf(objectOf<ModemState>).condition;
    if (first == Condition::Absent || first == Condition::Invalid) {
        publishedCopyOf(objectOf<ModemState>);
    }
    const Deadline deadline(options.timeoutSeconds);
    std::map<std::string, std::string> known;
    do {
        for (const auto& [name, item] : itemsOf(copyOf(objectOf<ModemState>)).members) {
            if (item.kind != Report::Kind::Text) {
                continue;
            }
            const auto [entry, isNew] = known.emplace(name, item.value);
            if (isNew || entry->second != item.value) {
                entry->second = item.value;
                writeItem(name, item.value, options.asJson);
            }
        }
    } while (waitForPoll(deadline));
    return statusTimeOver;
}

}  // namespace vantricctl
