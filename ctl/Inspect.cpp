// The command inspect.
#include <unistd.h>

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
    report.add("present", file.exists());
    if (file.exists()) {
        if (file.error != 0) {
            report.add("error", std::generic_category().message(file.error));
        }
        report.add("size", file.size);
        report.add("owner", file.owner);
        char mode[8];
        std::snprintf(mode, sizeof(mode), "%04o", static_cast<unsigned int>(file.mode));
        report.add("mode", mode);
    }
}

void addUsers(Report& report, const ObservedObject& object) {
    report.add("attachCount", object.attachCount);
    Report& mappers = report.add("mappedBy", Report::Kind::List);
    for (const Mapper& mapper : object.mappers) {
        Report& row = mappers.add();
        row.add("process", mapper.process);
        row.add("program", mapper.program);
        row.add("mappings", mapper.mappings);
    }
}

void addRing(Report& report, const Ring& ring, bool showsSecrets) {
    const RingMemory& memory = ring.memory;
    report.add("initialized", memory.initialized);
    report.add("producers", memory.producers);
    report.add("consumers", memory.consumers);
    report.add("readIndex", memory.readIndex);
    report.add("writeIndex", memory.writeIndex);
    report.add("capacity", memory.capacity);
    report.add("full", memory.full);
    report.add("empty", memory.empty);
    report.add("usedBytes", ring.usedBytes());
    Report& frames = report.add("frames", Report::Kind::List);
    for (const WaitingFrame& frame : ring.frames()) {
        Report& row = frames.add();
        row.add("command", frame.command);
        row.add("name", frame.name());
        row.add("complete", frame.isComplete);
        row.add("length", frame.payload.size());
        row.addText("payload", showsSecrets ? frame.payload : frame.withoutSecrets());
    }
}

void addNetworks(Report& report, const WifiInfosList& list) {
    report.add("count", int32_t{list.count});
    report.add("updateCounter", int32_t{list.updateCounter});
    Report& entries = report.add("entries", Report::Kind::List);
    for (const WifiListEntry& entry : entriesOf(list)) {
        entries.add().addFields(&entry, networkFields());
    }
}

// What the object holds, in its own layout.
void addContents(Report& report, const Inspection& inspection, const ObservedObject& object,
                 bool showsSecrets) {
    const std::string& name = object.file.name;
    if (name == objectOf<RingMemory>.name) {
        addRing(report.add("ring"), inspection.ring, showsSecrets);
        return;
    }
    report.add("condition", conditionName(object.condition));
    report.add("version", object.version);
    report.add("valid", object.valid);
    if (name == objectOf<ModemState>.name) {
        report.add("ageSeconds", object.ageSeconds);
        report.add("record").addFields(&inspection.state, stateFields(),
                                       showsSecrets ? Secrets::Shown : Secrets::Hidden);
    } else if (name == objectOf<ModemStateExtended>.name) {
        report.add("record").addFields(&inspection.extended, extendedFields());
    } else {
        addNetworks(report.add("record"), inspection.networks);
    }
}

// A list in JSON; in text, a heading for each.
void addFindings(Report& report, const std::vector<Finding>& findings, bool asJson) {
    Report& all = report.add("findings", asJson ? Report::Kind::List : Report::Kind::Group);
    for (const Finding& finding : findings) {
        Report& row = all.add(finding.name + (" in " + finding.where));
        if (asJson) {
            row.add("finding", finding.name);
            row.add("where", finding.where);
        }
        row.add("meaning", finding.meaning);
        row.add("remedy", finding.remedy);
    }
}

Report reportOf(const Inspection& inspection, const std::vector<Finding>& findings,
                const Options& options) {
    Report report;
    Report& objects = report.add("objects");
    for (const ObservedObject& object : inspection.objects) {
        Report& row = objects.add(object.file.name);
        addFile(row, object.file);
        if (object.file.error == 0) {
            addUsers(row, object);
            addContents(row, inspection, object, options.showsSecrets);
        }
    }
    Report& semaphores = report.add("semaphores", Report::Kind::List);
    for (const ObservedSemaphore& semaphore : inspection.semaphores) {
        Report& row = semaphores.add();
        row.add("name", semaphore.file.name);
        addFile(row, semaphore.file);
        if (semaphore.bits != 0) {
            row.add("bits", semaphore.bits);
            row.add("value", semaphore.value);
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
