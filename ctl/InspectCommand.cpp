// The command inspect.
#include <unistd.h>

#include <cerrno>
#include <cstdio>
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
    if (file.error != 0 && file.error != ENOENT) {
        report["error"] = std::generic_category().message(file.error);
    }
    if (file.exists()) {
        report["size"] = file.size;
        report["owner"] = file.owner;
        char mode[8];
        std::snprintf(mode, sizeof(mode), "%04o", static_cast<unsigned int>(file.mode));
        report["mode"] = mode;
    }
}

void addJudgement(Report& report, const Judgement& judgement) {
    report["condition"] = conditionName(judgement.condition);
    report["version"] = judgement.version;
    report["valid"] = judgement.valid;
}

Report networksReport(const WifiInfosList& list) {
    Report report = {{"count", int32_t{list.count}},
                     {"updateCounter", int32_t{list.updateCounter}},
                     {"entries", Report::array()}};
    for (int32_t index = 0; index < entryCount(list); ++index) {
        addFields(report["entries"].emplace_back(), &list.entries[index], networkFields());
    }
    return report;
}

Report ringReport(const Ring& ring, bool showSecrets) {
    const RingMemory& memory = ring.memory;
    Report report = {{"initialized", memory.initialized},
                     {"producers", memory.producers},
                     {"consumers", memory.consumers},
                     {"readIndex", memory.readIndex},
                     {"writeIndex", memory.writeIndex},
                     {"capacity", memory.capacity},
                     {"full", memory.full},
                     {"empty", memory.empty},
                     {"usedBytes", ring.usedBytes()},
                     {"frames", Report::array()}};
    for (const WaitingFrame& frame : ring.frames()) {
        Report row = {{"command", frame.command},
                      {"name", commandName(frame.command)},
                      {"complete", frame.isComplete},
                      {"length", frame.payload.size()}};
        addText(row, "payload", showSecrets ? frame.payload : withoutSecrets(frame));
        report["frames"].push_back(row);
    }
    return report;
}

// What the object holds, in its own layout.
void addContents(Report& row, const Inspection& inspection, const std::string& name,
                 bool showSecrets) {
    if (name == objectName<ModemState>) {
        addJudgement(row, inspection.state);
        row["ageSeconds"] = inspection.state.ageSeconds;
        addFields(row["record"], &inspection.state.record, stateFields(), showSecrets);
    } else if (name == objectName<ModemStateExtended>) {
        addJudgement(row, inspection.extended);
        addFields(row["record"], &inspection.extended.record, extendedFields());
    } else if (name == objectName<WifiInfosList>) {
        addJudgement(row, inspection.networks);
        row["record"] = networksReport(inspection.networks.record);
    } else {
        row["ring"] = ringReport(inspection.ring, showSecrets);
    }
}

// All but the findings.
Report reportOf(const Inspection& inspection, bool showSecrets) {
    Report report;
    for (const ObservedObject& object : inspection.objects) {
        Report& row = report["objects"][object.file.name];
        addFile(row, object.file);
        if (object.file.error != 0) {
            continue;
        }
        row["attachCount"] = object.attachCount();
        row["mappedBy"] = Report::array();
        for (const Mapper& mapper : object.mappers) {
            row["mappedBy"].push_back({{"process", mapper.process},
                                       {"program", mapper.program},
                                       {"mappings", mapper.mappings}});
        }
        addContents(row, inspection, object.file.name, showSecrets);
    }
    for (const ObservedSemaphore& semaphore : inspection.semaphores) {
        Report& row = report["semaphores"].emplace_back();
        row["name"] = semaphore.file.name;
        addFile(row, semaphore.file);
        if (const auto word = decodeSemaphore(semaphore.file)) {
            row["bits"] = word->bits;
            row["value"] = word->value;
        }
    }
    return report;
}

// A list in JSON; in text, a heading for each.
Report findingsReport(const std::vector<Finding>& findings, bool asJson) {
    Report report = asJson ? Report::array() : Report::object();
    for (const Finding& finding : findings) {
        Report& row =
            asJson ? report.emplace_back() : report[finding.name + (" in " + finding.where)];
        if (asJson) {
            row["finding"] = finding.name;
            row["where"] = finding.where;
        }
        row["meaning"] = finding.meaning;
        row["remedy"] = finding.remedy;
    }
    return report;
}

}  // namespace

int inspect(const CommonOptions& options, bool isWatching, bool showSecrets) {
    const bool staysInPlace = isWatching && !options.asJson && isatty(STDOUT_FILENO) == 1;
    Wait wait(options.timeoutSeconds, Wait::Countdown::None);
    for (;;) {
        const Inspection inspection = inspectExchange();
        const std::vector<Finding> findings = findingsOf(inspection);
        Report report = reportOf(inspection, showSecrets);
        report["findings"] = findingsReport(findings, options.asJson);
        writeReport(report, options.asJson, staysInPlace ? clearTerminal : "");
        if (!isWatching) {
            return findings.empty() ? statusDone : statusFailed;
        }
        for (int poll = 0; poll < pollsBetweenViews; ++poll) {
            if (!wait.next()) {
                return statusTimeOver;
            }
        }
    }
}

}  // namespace vantricctl
