// All that the objects and semaphores show, without changing any of it, and what is wrong with it.
//
// An inspection reads several times within half a second, so that what is only in passing (a lock
// that is held for a copy, a client between its two counts) can be told from what stays.
#pragma once

#include <string>
#include <vector>

#include "ctl/Ring.h"
#include "ctl/ServerState.h"
#include "ctl/SharedFile.h"

namespace vantricctl {

struct ObservedObject {
    SharedFile file;
    std::size_t rightSize;
    std::vector<Mapper> mappers;

    uint32_t attachCount() const;
    uint32_t mappings() const;
};

struct ObservedSemaphore {
    SharedFile file;
    bool isHeldThroughout;  // at every reading
};

struct Inspection {
    std::vector<ObservedObject> objects;  // the three states and the ring, in this order
    Publication<ModemState> state;
    Publication<ModemStateExtended> extended;
    Publication<WifiInfosList> networks;
    Ring ring;
    std::vector<ObservedSemaphore> semaphores;
    bool isRingLeftAlone;  // nothing was taken out between the readings
};

// Takes half a second. Throws Interrupted.
Inspection inspectExchange();

struct Finding {
    const char* name;
    std::string where;  // the objects, fields or semaphores concerned
    const char* meaning;
    const char* remedy;
};

// In the order of a fixed table; empty when all is well. Pure function of its argument and of this
// process's user and word size.
std::vector<Finding> findingsOf(const Inspection& inspection);

}  // namespace vantricctl
