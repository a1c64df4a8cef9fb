#include "tests/end_to_end/SystemLogDaemon.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>

namespace vantric_test {

namespace {

constexpr const char* socketPath = "/dev/log";

}  // namespace

SystemLogDaemon::SystemLogDaemon() : socket_(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, socketPath, sizeof(address.sun_path) - 1);
    if (bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        const int error = errno;
        close(socket_);
        throw std::system_error(error, std::generic_category(), "listening at /dev/log");
    }
}

SystemLogDaemon::~SystemLogDaemon() {
    close(socket_);
    unlink(socketPath);
}

std::vector<std::string> SystemLogDaemon::take() {
    std::vector<std::string> datagrams;
    char datagram[4096];
    ssize_t size = 0;
    while ((size = recv(socket_, datagram, sizeof(datagram), MSG_DONTWAIT)) >= 0) {
        datagrams.emplace_back(datagram, static_cast<std::size_t>(size));
    }
    return datagrams;
}

}  // namespace vantric_test
