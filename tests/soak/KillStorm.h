// Clients killed at any point of an exchange while the server goes on.
//
// Of what a dead client has taken, only the locks come back: the next construction of a lock
// releases it. The counters it raised stay up, for it never detaches.
#pragma once

#include <cstdint>
#include <string>

#include "tests/soak/Supervision.h"

namespace vantric_soak {

struct KillStormSize {
    uint32_t kills = 9000;           // of the library's clients
    uint32_t killedPrograms = 1000;  // of vantricprobe
    std::string probePath;
    std::string simulatorPath;
};

// The library's clients against a server at full speed, each death checked to the last counter.
// Prints a summary; throws HuntFailure when a property does not hold.
void stormClients(uint32_t kills, uint64_t seed, Supervision& supervision);

// vantricprobe against vantricsim.
void stormPrograms(const KillStormSize& size, uint64_t seed, Supervision& supervision);

// Both.
void stormWithKills(const KillStormSize& size, uint64_t seed, Supervision& supervision);

}  // namespace vantric_soak
