#include "tests/support/LogSettings.h"

#include <cstdlib>
#include <initializer_list>

namespace vantric_test {

void forgetLogSettings() {
    for (const char* variable :
         {"VRAX_LOG_LEVEL", "VRAX_LOG_TYPE", "VRAX_LOG_ROOT", "VRAX_LOG_NAME", "VRAX_LOG_SIZE"}) {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): tests have one thread here
        unsetenv(variable);
    }
}

}  // namespace vantric_test
