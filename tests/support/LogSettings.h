// The log settings that programs inherit from whoever runs the tests.
#pragma once

namespace vantric_test {

// Takes all of them out of this process's environment.
void forgetLogSettings();

}  // namespace vantric_test
