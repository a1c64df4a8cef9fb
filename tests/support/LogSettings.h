// The log settings that programs inherit from the environment of a test run.
#pragma once

#include <cstdlib>

namespace vantric_test {

// Takes all of them out of this process's environment.
inline void forgetLogSettings() {
    for (const char* variable :
         {"VRAX_LOG_LEVEL", "VRAX_LOG_TYPE", "VRAX_LOG_ROOT", "VRAX_LOG_NAME", "VRAX_LOG_SIZE"}) {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): tests have one thread here
        unsetenv(variable);
    }
}

}  // namespace vantric_test
