// A /dev that no other process sees: the null device, the private /dev/shm, a pipe in the place of
// the console, and room for the socket of the system log.
#pragma once

#include <string>

#include "tests/support/TemporaryFolder.h"

namespace vantric_test {

class PrivateDevices {
  public:
    // Lays the folder over /dev while the object lives. Needs the private mount namespace that
    // every test process has. Throws std::system_error when a mount fails.
    PrivateDevices();
    ~PrivateDevices();
    PrivateDevices& operator=(PrivateDevices&&) = delete;

    // What was written to the console so far.
    std::string console();

  private:
    void lay();

    TemporaryFolder folder_;
    int consoleDescriptor_ = -1;
    std::string consoleText_;
};

}  // namespace vantric_test
