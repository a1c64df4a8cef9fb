// The command watch.
#include <ctime>
#include <nlohmann/json.hpp>

#include "ctl/Output.h"
#include "ctl/Request.h"

namespace vantricctl {

namespace {

// The condition, and the texts of a state that has any.
Report itemsOf(const ObjectCopy& copy) {
    Report items = {{"state", conditionName(copy.condition)}};
    if (copy.isPublished()) {
        const auto state = recordIn<ModemState>(copy);
        addFields(items, &state, com_qel::Orvane::Vantric::stateFields());
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

int watch(const Options& options) {
    const Condition first = copyOf(objectOf<ModemState>).condition;
    if (first == Condition::Absent || first == Condition::Invalid) {
        publishedCopyOf(objectOf<ModemState>);
    }
    const Deadline deadline(options.timeoutSeconds);
    Report known;  // null for what was not written yet
    do {
        const Report items = itemsOf(copyOf(objectOf<ModemState>));
        for (const auto& [name, item] : items.items()) {
            if (item.is_string() && !isExactText(items, name) && known[name] != item) {
                known[name] = item;
                writeItem(name, item.get<std::string>(), options.asJson);
            }
        }
    } while (waitForPoll(deadline));
    return statusTimeOver;
}

}  // namespace vantricctl
