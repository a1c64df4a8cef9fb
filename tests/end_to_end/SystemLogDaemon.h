// The receiving end of the system log, for processes that share its PrivateDevices.
#pragma once

#include <string>
#include <vector>

namespace vantric_test {

class SystemLogDaemon {
  public:
    // Listens at /dev/log while the object lives. Throws std::system_error when that fails.
    SystemLogDaemon();
    ~SystemLogDaemon();

    SystemLogDaemon(const SystemLogDaemon&) = delete;
    SystemLogDaemon& operator=(const SystemLogDaemon&) = delete;

    // The datagrams that have arrived since the last call, to the byte.
    std::vector<std::string> take();

  private:
    int socket_;
};

}  // namespace vantric_test
