// Sleeping takes no time in this program: the blocking queries' own work can be counted.
#pragma once

namespace vantric_bench {

// Called in place of every sleep, as whatever the server does meanwhile; null for nothing.
extern void (*whileSleeping)();

}  // namespace vantric_bench
