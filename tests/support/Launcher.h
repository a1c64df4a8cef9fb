// Running the programs under test below a tool that watches them.
#pragma once

#include "tests/support/ChildProcess.h"

namespace vantric_test {

// `command` behind the words of the environment's VANTRIC_TEST_LAUNCHER (blanks between them): a
// tool that runs the program which follows it. Without the variable, `command` as it is.
Command watched(Command command);

}  // namespace vantric_test
