// All that the objects and semaphores show, without changing any of it, and what is wrong with it.
//
// An inspection reads several times within half a second, so that what is only in passing (a lock
// that is held for a copy, a client between its two counts) can be told from what stays.
#pragma once

#include <string>
#include <vector>

#include "ctl/Ring.h"
#include "ctl/SharedObjects.h"

namespace vantricctl {

// A process with the number of times that it maps an object.
struct Mapper {
    pid_t process;
    std::string program;
    uint32_t mappings;
};

struct ObservedObject : ObjectCopy {
    uint32_t attachCount;
    uint32_t mappings;            // by all processes that this user may look into
    std::vector<Mapper> mappers;  // these processes
};

struct ObservedSemaphore : Semaphore {
    bool isHeldThroughout;  // at every reading
};

struct Inspection {
    std::vector<ObservedObject> objects;  // the three states and the ring, in this order
    ModemState state;
    ModemStateExtended extended;
    WifiInfosList networks;
    Ring ring;
    std::vector<ObservedSemaphore> semaphores;
    bool isRingLeftAlone;   // nothing was taken out between the readings
    bool seesAllProcesses;  // false when this user may not look into one of them
};

// Takes half a second. Throws Failure when a signal arrives.
Inspection inspectExchange();

struct Finding {
    const char* name;
    std::string where;  // the objects, fields or semaphores concerned
    const char* meaning;
    const char* remedy;
};

// In a fixed order; empty when all is well. Pure function of its argument and of this process's
// user and word size.
std::vector<Finding> findingsOf(const Inspection& inspection);

}  // namespace vantricctl
