#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "Vantric/RecordFields.h"
#include "ctl/Inspection.h"

namespace vantricctl {

namespace {

using namespace com_qel::Orvane::Vantric;

void append(std::string& places, const std::string& place) {
    places += (places.empty() || place.empty() ? "" : ", ") + place;
}

// The names of the objects or semaphores that `isConcerned`.
template <class Observed, class Judgement>
std::string namesWhere(const std::vector<Observed>& all, Judgement isConcerned) {
    std::string names;
    for (const Observed& observed : all) {
        if (isConcerned(observed)) {
            append(names, observed.file.name);
        }
    }
    return names;
}

void appendEndlessTexts(std::string& places, const std::string& place, const void* record,
                        const RecordFields& fields) {
    for (const RecordField& field : fields) {
        const char* text = static_cast<const char*>(record) + field.offset;
        if (field.kind == RecordField::Kind::Text && std::memchr(text, 0, field.size) == nullptr) {
            append(places, place + "." + field.key);
        }
    }
}

std::string endlessTexts(const Inspection& inspection) {
    std::string places;
    appendEndlessTexts(places, "ModemStateShm", &inspection.state, stateFields());
    appendEndlessTexts(places, "ModemStateEx", &inspection.extended, extendedFields());
    const std::vector<WifiListEntry> entries = entriesOf(inspection.networks);
    for (std::size_t index = 0; index < entries.size(); ++index) {
        appendEndlessTexts(places, "ModemWifiList.entries[" + std::to_string(index) + "]",
                           &entries[index], networkFields());
    }
    return places;
}

}  // namespace

std::vector<Finding> findingsOf(const Inspection& inspection) {
    const auto objectsWhere = [&](auto isConcerned) {
        return namesWhere(inspection.objects, isConcerned);
    };
    const auto objectsThatAre = [&](Condition condition) {
        return objectsWhere(
            [=](const ObservedObject& object) { return object.condition == condition; });
    };
    const auto semaphoresWhere = [&](auto isConcerned) {
        return namesWhere(inspection.semaphores, isConcerned);
    };
    const auto isUnreadable = [](const auto& observed) {
        return observed.file.error != 0 && observed.file.exists();
    };
    std::string unreadable = objectsWhere(isUnreadable);
    append(unreadable, semaphoresWhere(isUnreadable));
    const auto ringIf = [](bool isConcerned) {
        return std::string(isConcerned ? objectOf<RingMemory>.name : "");
    };
    const ObservedObject& networks = inspection.objects[2];
    const ObservedObject& ringObject = inspection.objects[3];
    const Ring& ring = inspection.ring;
    const uint64_t roles = uint64_t{ring.memory.producers} + ring.memory.consumers;
    const std::vector<WaitingFrame> frames = ring.frames();
    const int32_t count = inspection.networks.count;
    const bool isCountImpossible = count < 0 || count > WifiInfosList::maximumCount;
    // Counts are compared with the processes, of which this user may not see all.
    const bool seesAll = inspection.seesAllProcesses;
    const char* unseen =
        "More users are counted than are seen, but this user may not look into every process: "
        "whether one ended without detaching cannot be told.";
    const char* lookAgain = "Inspect as root.";
    const char* cleanUp =
        "Harmless while the server runs. To clean up, stop all programs and remove the object.";
    const char* removeObject = "Stop all programs, remove the object, start the server.";
    std::vector<Finding> findings = {
        {"no server", objectsThatAre(Condition::Absent),
         "No process has created the object since the machine started.", "Start the server."},
        {"nothing published", objectsThatAre(Condition::Invalid),
         "The object exists, but its server has published nothing, or it loads a configuration.",
         "Wait a minute; then restart the server."},
        {"stale state", objectsThatAre(Condition::Stale),
         "The server has not published for more than 300 seconds: it hangs, is gone, or the clock "
         "was set.",
         "Check that the server runs and that the clock is right; restart the server."},
        {"other version", objectsThatAre(Condition::OtherVersion),
         "The server publishes another layout than clients read.",
         "Install server and clients of the same version."},
        {"wrong size", objectsThatAre(Condition::WrongSize),
         "A program of another version has resized the object.",
         "Stop all programs, remove the object, start programs of one version."},
        {"unreadable", unreadable, "This user may not read the file.",
         "Run server, clients and this program as one user."},
        {"foreign owner", objectsWhere([](const ObservedObject& object) {
             return object.file.exists() && object.file.owner != geteuid();
         }),
         "The object belongs to another user than this one.",
         "Run server and clients as one user; the first of them to start creates the object."},
        {"attach count too high", objectsWhere([](const ObservedObject& object) {
             return object.file.error == 0 && object.attachCount > object.mappings;
         }),
         seesAll ? "More attachments are counted than live processes have: a process ended without "
                   "detaching. The object then outlives all of its users, and its old record stays "
                   "valid."
                 : unseen,
         seesAll ? cleanUp : lookAgain},
        {"producers or consumers too high", ringIf(roles > ringObject.mappings),
         seesAll ? "More producers and consumers are counted than live processes are attached: one "
                   "ended without detaching. A new client then no longer empties the ring of old "
                   "commands."
                 : unseen,
         seesAll ? cleanUp : lookAgain},
        {"impossible ring",
         ringIf(ringObject.isPublished() && ring.isSetUp() && !ring.isPossible()),
         "Capacity or an index is outside the ring: every command is dropped.", removeObject},
        {"full ring", ringIf(ring.isPossible() && ring.freeBytes() == 0),
         "There is no room: every further command is dropped.",
         "Restart the server, which takes the commands out."},
        {"ring not drained", ringIf(ring.usedBytes() != 0 && inspection.isRingLeftAlone),
         "Commands wait and none was taken out for half a second: the server hangs or is gone.",
         "Restart the server."},
        {"torn frame", ringIf(!frames.empty() && !frames.back().isComplete),
         "The last frame is longer than what the ring holds: a header was lost, and further "
         "commands are misread.",
         removeObject},
        {"count out of range",
         std::string(isCountImpossible && networks.isPublished() ? "ModemWifiList.count" : ""),
         "The server publishes fewer than 0 or more than 100 networks.",
         "Report the fault of the server; clients read 0 or 100."},
        {"text without end", endlessTexts(inspection),
         "The server has filled the field without a NUL.",
         "Report the fault of the server; clients stop at the end of the field."},
        {"lock held", semaphoresWhere([](const ObservedSemaphore& semaphore) {
             return semaphore.isHeldThroughout;
         }),
         "The lock was held at every poll for half a second: its holder was killed or is stopped. "
         "Every process that takes the lock waits without end.",
         "Let a stopped holder go on. A client that starts releases the lock of a dead one."},
        {"lock above one",
         semaphoresWhere([](const ObservedSemaphore& semaphore) { return semaphore.value > 1; }),
         "The lock lets several processes in at the same time: records and frames may be torn.",
         "Stop all programs, remove the semaphore, start the server."},
        {"semaphore of another word size", semaphoresWhere([](const ObservedSemaphore& semaphore) {
             return semaphore.file.error == 0 && semaphore.bits != ownSemaphoreBits;
         }),
         "The semaphore has the format of programs with another word size than this one; between "
         "programs of different word sizes it does not lock.",
         "Run server and clients of one word size, after removing the semaphore; inspect with a "
         "program of that size, too."},
    };
    findings.erase(std::remove_if(findings.begin(), findings.end(),
                                  [](const Finding& finding) { return finding.where.empty(); }),
                   findings.end());
    return findings;
}

}  // namespace vantricctl
