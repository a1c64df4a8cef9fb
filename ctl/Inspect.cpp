// The command inspect.
#include <unistd.h>

#include <cstdio>
#include <nlohmann/json.hpp>
#include <system_error>

#include "ctl/Commands.h"
#include "ctl/Failure.h"
#include "ctl/Inspection.h"
#include "ctl/Output.h"
#include "ctl/Wait.h"

namespace vantricctl {

namespace {

using namespace com_qel::Orvane::Vantric;

constexpr int pollsBetweenViews = 10;

constexpr const char* clearTerminal = "\033[H\033[J";

void addFile(Report& report, const SharedFile& file) {
    report["present"] = file.exists();
    if (file.exists()) {
        if (file.error != 0) {
            report["error"] = std::generic_category().message(file.error);
        }
        report["size"] = file.size;
        report["owner"] = file.owner;
        char mode[8];
        std::snprintf(mode, sizeof(mode), "%04o", static_cast<unsigned int>(file.mode));
        report["mode"] = mode;
    }
}

void addUsers(Report& report, const ObservedObject& object) {
    report["attachCount"] = object.attachCount;
    Report& mappers = report["mappedBy"] = Report::array();
    for (const Mapper& mapper : object.mappers) {
        Report& row = mappers.emplace_back();
        row["process"] = mapper.process;
        row["program"] = mapper.program;
        row["mappings"] = mapper.mappings;
    }
}

void addRing(Report& report, const Ring& ring, bool showsSecrets) {
    const RingMemory& memory = ring.memory;
    report["initialized"] = memory.initialized;
    report["producers"] = memory.producers;
    report["consumers"] = memory.consumers;
    report["readIndex"] = memory.readIndex;
    report["writeIndex"] = memory.writeIndex;
    report["capacity"] = memory.capacity;
    report["full"] = memory.full;
    report["empty"] = memory.empty;
    report["usedBytes"] = ring.usedBytes();
    Report& frames = report["frames"] = Report::array();
    for (const WaitingFrame& frame : ring.frames()) {
        Report& row = frames.emplace_back();
        row["command"] = frame.command;
        row["name"] = frame.name();
        row["complete"] = frame.isComplete;
        row["length"] = frame.payload.size();
        addText(row, "payload", showsSecrets ? frame.payload : frame.withoutSecrets());
    }
}

void addNetworks(Report& report, const WifiInfosList& list) {
    report["count"] = int32_t{list.count};
    report["updateCounter"] = int32_t{list.updateCounter};
    Report& entries = report["entries"] = Report::array();
    for (const WifiListEntry& entry : entriesOf(list)) {
        addFields(entries.emplace_back(), &entry, networkFields());
    }
}

// What the object holds, in its own layout.
void addContents(Report& report, const Inspection& inspection, const ObservedObject& object,
                 bool showsSecrets) {
    const std::string& name = object.file.name;
    if (name == objectOf<RingMemory>.name) {
        addRing(report["ring"], inspection.ring, showsSecrets);
        return;
    }
    report["condition"] = conditionName(object.condition);
    report["version"] = object.version;
    report["valid"] = object.valid;
    if (name == objectOf<ModemState>.name) {
        report["ageSeconds"] = object.ageSeconds;
        addFields(report["record"], &inspection.state, stateFields(),
                  showsSecrets ? Secrets::Shown : Secrets::Hidden);
    } else if (name == objectOf<ModemStateExtended>.name) {
        addFields(report["record"], &inspection.extended, extendedFields());
    } else {
        addNetworks(report["record"], inspection.networks);
    }
}

// A list in JSON; in text, a heading for each.
void addFindings(Report& report, const std::vector<Finding>& findings, bool asJson) {
    Report& all = report["findings"] = asJson ? Report::array() : Report::object();
    for (const Finding& finding : findings) {
        Report& row = asJson ? all.emplace_back() : all[finding.name + (" in " + finding.where)];
        if (asJson) {
            row["finding"] = finding.name;
            row["where"] = finding.where;
        }
        row["meaning"] = finding.meaning;
        row["remedy"] = finding.remedy;
    }
}

Report reportOf(const Inspection& inspection, const std::vector<Finding>& findings,
                const Options& options) {
    Report report;
    Report& objects = report["objects"];
    for (const ObservedObject& object : inspection.objects) {
        Report& row = objects[object.file.name];
        addFile(row, object.file);
        if (object.file.error == 0) {
            addUsers(row, object);
            addContents(row, inspection, object, options.showsSecrets);
        }
    }
    Report& semaphores = report["semaphores"] = Report::array();
    for (const ObservedSemaphore& semaphore : inspection.semaphores) {
        Report& row = semaphores.emplace_back();
        row["name"] = semaphore.file.name;
        addFile(row, semaphore.file);
        if (semaphore.bits != 0) {
            row["bits"] = semaphore.bits;
            row["value"] = semaphore.value;
        }
    }
    addFindings(report, findings, options.asJson);
    return report;
}

}  // namespace

int inspect(const Options& options) {
    const bool staysInPlace = options.isWatching && !options.asJson && isatty(STDOUT_FILENO) == 1;
    const Deadline deadline(options.timeoutSeconds);
    for (;;) {
        const Inspection inspection = inspectExchange();
        const std::vector<Finding> findings = findingsOf(inspection);
        writeReport(reportOf(inspection, findings, options), options.asJson,
                    staysInPlace ? clearTerminal : "");
        if (!options.isWatching) {
            return findings.empty() ? statusDone : statusFailed;
        }
        for (int poll = 0; poll < pollsBetweenViews; ++poll) {
            if (!waitForPoll(deadline)) {
                return statusTimeOver;
            }
        }
    }
}

}  // namespace vantricctl
