#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <functional>

#include "Vantric/RecordFields.h"
#include "ctl/Inspection.h"

namespace vantricctl {

namespace {

using namespace com_qel::Orvane::Vantric;

using Places = std::vector<std::string>;
using Search = std::function<Places(const Inspection& inspection)>;

// The names of the objects or semaphores that `isConcerned`.
template <class Observed>
Places namesWhere(const std::vector<Observed>& all, bool (*isConcerned)(const Observed&)) {
    Places places;
    for (const Observed& observed : all) {
        if (isConcerned(observed)) {
            places.push_back(observed.file.name);
        }
    }
    return places;
}

Search objectsWhere(bool (*isConcerned)(const ObservedObject&)) {
    return
        [=](const Inspection& inspection) { return namesWhere(inspection.objects, isConcerned); };
}

Search semaphoresWhere(bool (*isConcerned)(const ObservedSemaphore&)) {
    return [=](const Inspection& inspection) {
        return namesWhere(inspection.semaphores, isConcerned);
    };
}

Search ringWhen(bool (*isConcerned)(const Inspection&)) {
    return [=](const Inspection& inspection) {
        return isConcerned(inspection) ? Places{ringName} : Places{};
    };
}

Search statesThatAre(Condition condition) {
    return [=](const Inspection& inspection) {
        const Condition conditions[] = {inspection.state.condition, inspection.extended.condition,
                                        inspection.networks.condition};
        Places places;
        for (std::size_t index = 0; index < std::size(conditions); ++index) {
            if (conditions[index] == condition) {
                places.push_back(inspection.objects[index].file.name);
            }
        }
        return places;
    };
}

template <class Observed>
bool isUnreadable(const Observed& observed) {
    return observed.file.error != 0 && observed.file.error != ENOENT;
}

Places unreadableFiles(const Inspection& inspection) {
    Places places = namesWhere(inspection.objects, isUnreadable<ObservedObject>);
    for (const std::string& name :
         namesWhere(inspection.semaphores, isUnreadable<ObservedSemaphore>)) {
        places.push_back(name);
    }
    return places;
}

bool hasWrongSize(const ObservedObject& object) {
    return object.file.error == 0 && !object.file.hasSize(object.rightSize);
}

bool hasTooManyRoles(const Inspection& inspection) {
    const RingMemory& memory = inspection.ring.memory;
    const uint64_t roles = uint64_t{memory.producers} + memory.consumers;
    return roles > inspection.objects.back().mappings();
}

bool isRingImpossible(const Inspection& inspection) {
    const Ring& ring = inspection.ring;
    return inspection.objects.back().file.hasSize(ringObjectSize) && ring.isSetUp() &&
           !ring.isPossible();
}

bool hasTornFrame(const Inspection& inspection) {
    const std::vector<WaitingFrame> frames = inspection.ring.frames();
    return !frames.empty() && !frames.back().isComplete;
}

bool isAboveOne(const ObservedSemaphore& semaphore) {
    const auto word = decodeSemaphore(semaphore.file);
    return word && word->value > 1;
}

bool hasOtherWordSize(const ObservedSemaphore& semaphore) {
    const auto word = decodeSemaphore(semaphore.file);
    return semaphore.file.error == 0 && (!word || word->bits != ownSemaphoreBits());
}

Places countOutOfRange(const Inspection& inspection) {
    const int32_t count = inspection.networks.record.count;
    const bool isOutside = count < 0 || count > WifiInfosList::maximumCount;
    return isOutside && inspection.networks.isPublished() ? Places{"ModemWifiList.count"}
                                                          : Places{};
}

void addEndlessTexts(Places& places, const std::string& place, const void* record,
                     const RecordFields& fields) {
    for (const auto& field : fields) {
        const char* text = static_cast<const char*>(record) + field.offset;
        if (field.kind == com_qel::Orvane::Vantric::RecordField::Kind::Text &&
            std::memchr(text, 0, field.size) == nullptr) {
            places.push_back(place + "." + field.key);
        }
    }
}

Places endlessTexts(const Inspection& inspection) {
    Places places;
    addEndlessTexts(places, "ModemStateShm", &inspection.state.record, stateFields());
    addEndlessTexts(places, "ModemStateEx", &inspection.extended.record, extendedFields());
    const WifiInfosList& list = inspection.networks.record;
    for (int32_t index = 0; index < entryCount(list); ++index) {
        addEndlessTexts(places, "ModemWifiList.entries[" + std::to_string(index) + "]",
                        &list.entries[index], networkFields());
    }
    return places;
}

struct Check {
    const char* name;
    Search find;
    const char* meaning;
    const char* remedy;
};

const std::vector<Check>& allChecks() {
    static const std::vector<Check> checks = {
        {"no server",
         objectsWhere([](const ObservedObject& object) { return object.file.error == ENOENT; }),
         "No process has created the object since the machine started.", "Start the server."},
        {"nothing published", statesThatAre(Condition::Invalid),
         "The object exists, but its server has published nothing, or it loads a configuration.",
         "Wait a minute; then restart the server."},
        {"stale state", statesThatAre(Condition::Stale),
         "The server has not published for more than 300 seconds: it hangs, is gone, or the clock "
         "was set.",
         "Check that the server runs and that the clock is right; restart the server."},
        {"other version", statesThatAre(Condition::OtherVersion),
         "The server publishes another layout than clients read.",
         "Install server and clients of the same version."},
        {"wrong size", objectsWhere(hasWrongSize),
         "A program of another version has resized the object.",
         "Stop all programs, remove the object, start programs of one version."},
        {"unreadable", unreadableFiles, "This user may not read the file.",
         "Run server, clients and this program as one user."},
        {"foreign owner", objectsWhere([](const ObservedObject& object) {
             return object.file.exists() && object.file.owner != geteuid();
         }),
         "The object belongs to another user than this one.",
         "Run server and clients as one user; the first of them to start creates the object."},
        {"attach count too high", objectsWhere([](const ObservedObject& object) {
             return object.file.error == 0 && object.attachCount() > object.mappings();
         }),
         "More attachments are counted than live processes have: a process ended without "
         "detaching. The object then outlives all of its users, and its old record stays valid.",
         "Harmless while the server runs. To clean up, stop all programs and remove the object."},
        {"producers or consumers too high", ringWhen(hasTooManyRoles),
         "More producers and consumers are counted than live processes are attached: one ended "
         "without detaching. A new client then no longer empties the ring of old commands.",
         "Harmless while the server runs. To clean up, stop all programs and remove the object."},
        {"impossible ring", ringWhen(isRingImpossible),
         "Capacity or an index is outside the ring: every command is dropped.",
         "Stop all programs, remove the object, start the server."},
        {"full ring", ringWhen([](const Inspection& inspection) {
             return inspection.ring.isPossible() && inspection.ring.freeBytes() == 0;
         }),
         "There is no room: every further command is dropped.",
         "Restart the server, which takes the commands out."},
        {"ring not drained", ringWhen([](const Inspection& inspection) {
             return inspection.ring.usedBytes() != 0 && inspection.isRingLeftAlone;
         }),
         "Commands wait and none was taken out for half a second: the server hangs or is gone.",
         "Restart the server."},
        {"torn frame", ringWhen(hasTornFrame),
         "The last frame is longer than what the ring holds: a header was lost, and further "
         "commands are misread.",
         "Stop all programs, remove the object, start the server."},
        {"count out of range", countOutOfRange,
         "The server publishes fewer than 0 or more than 100 networks.",
         "Report the fault of the server; clients read 0 or 100."},
        {"text without end", endlessTexts, "The server has filled the field without a NUL.",
         "Report the fault of the server; clients stop at the end of the field."},
        {"lock held", semaphoresWhere([](const ObservedSemaphore& semaphore) {
             return semaphore.isHeldThroughout;
         }),
         "The lock was held at every look for half a second: its holder was killed or is stopped. "
         "Who takes the lock waits without end.",
         "Let a stopped holder go on. A client that starts releases the lock of a dead one."},
        {"lock above one", semaphoresWhere(isAboveOne),
         "The lock lets several processes in at the same time: records and frames may be torn.",
         "Stop all programs, remove the semaphore, start the server."},
        {"semaphore of another word size", semaphoresWhere(hasOtherWordSize),
         "The semaphore has the format of programs with another word size than this one; between "
         "programs of different word sizes it does not lock.",
         "Run server and clients of one word size, after removing the semaphore; inspect with a "
         "program of that size, too."},
    };
    return checks;
}

}  // namespace

std::vector<Finding> findingsOf(const Inspection& inspection) {
    std::vector<Finding> findings;
    for (const Check& check : allChecks()) {
        std::string where;
        for (const std::string& place : check.find(inspection)) {
            where += (where.empty() ? "" : ", ") + place;
        }
        if (!where.empty()) {
            findings.push_back({check.name, where, check.meaning, check.remedy});
        }
    }
    return findings;
}

}  // namespace vantricctl
