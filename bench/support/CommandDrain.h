// The server's end of the command channel: takes the frames out and insists that each is the one
// that was expected.
#pragma once

#include <cstdint>
#include <string>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"

namespace vantric_bench {

class CommandDrain {
  public:
    // The one frame that everybody sends until the next call.
    void expect(uint32_t command, std::string payload);

    // Empties the channel and returns the number of frames. Throws std::runtime_error at a frame
    // with another command or content. Neither allocates nor calls the system otherwise.
    int takeAll();

  private:
    com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands commands_{true};
    uint32_t expectedCommand_ = 0;
    std::string expectedPayload_;
};

}  // namespace vantric_bench
