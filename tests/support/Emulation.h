// Tests of a build for another architecture run in an emulator, and so must the programs that they
// start; a shell, say, is this machine's own.
#pragma once

#include "tests/support/ChildProcess.h"

namespace vantric_test {

// `command` behind the emulator that the build was configured with, when there is one and the
// program is of the build's architecture; as it is otherwise.
Command emulated(const Command& command);

// Standard error of a command without the line that the emulator adds when a signal ends it.
std::string withoutEmulatorsWords(const std::string& errors);

}  // namespace vantric_test
