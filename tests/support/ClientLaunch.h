// Starting a program in a state that it cannot be brought into from outside.
#pragma once

#include "tests/support/ChildProcess.h"

namespace vantric_test {

enum class Launch {
    WithoutOutput,        // standard output is closed
    WithoutErrors,        // standard error is closed
    IgnoringBrokenPipes,  // SIGPIPE is ignored
    ObeyingFileModes      // without the privileges of root
};

// The command that does that and then executes `command` in its own place.
Command launching(Launch launch, const Command& command);

}  // namespace vantric_test
