// The status monitor: --status.
#pragma once

namespace vantricprobe {

// Prints the state every few seconds until the process is stopped. The list of networks is queried
// only for the time it takes.
void monitorStatus();

}  // namespace vantricprobe
