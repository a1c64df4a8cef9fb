// What reaches the system log, to the byte, and where records go without one.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <regex>
#include <string>
#include <vector>

#include "tests/end_to_end/Bench.h"
#include "tests/end_to_end/LogLines.h"
#include "tests/end_to_end/PrivateDevices.h"

namespace {

using namespace vantric_test;
using Datagrams = std::vector<std::string>;

// The receiving end of the system log, for processes that share its PrivateDevices.
class SystemLogDaemon {
  public:
    SystemLogDaemon() : socket_(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        std::strcpy(address.sun_path, "/dev/log");
        EXPECT_EQ(bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    }
    ~SystemLogDaemon() { close(socket_); }
    SystemLogDaemon& operator=(SystemLogDaemon&&) = delete;

    // The datagrams that have arrived, with "STAMP" for the system log's time stamp, normalised.
    Datagrams received() const {
        static const std::regex stamp(R"(^(<[0-9]+>)[A-Z][a-z]{2} [ 1-3][0-9] [0-9:]{8} )");
        Datagrams datagrams;
        char datagram[4096];
        ssize_t size = 0;
        while ((size = recv(socket_, datagram, sizeof(datagram), MSG_DONTWAIT)) >= 0) {
            const std::string text(datagram, static_cast<std::size_t>(size));
            datagrams.push_back(normalised(std::regex_replace(text, stamp, "$1STAMP ")));
        }
        return datagrams;
    }

  private:
    int socket_;
};

struct Outcome {
    std::string sender;  // as it stands before every text
    std::string output;
};

Outcome runLogging(Command command) {
    command.environment["VRAX_LOG_LEVEL"] = "warning";
    command.environment["VRAX_LOG_TYPE"] = "syslog";
    ChildProcess child(command);
    const auto status = child.wait(commandPatience);
    EXPECT_TRUE(status && status->code() == 0);
    EXPECT_EQ(child.errors(), "");
    return {"vantricprobe[" + std::to_string(child.pid()) + "]: ", child.output()};
}

// The part of a line that the system log gets as well.
std::string textOf(const std::string& line) {
    const std::string label = ">: ";
    return line.substr(line.find(label) + label.size());
}

class SystemLog : public testing::Test {
  protected:
    PrivateDevices devices_;
};

TEST_F(SystemLog, getsRecordsInDatagramsOfTheirOwn) {
    const SystemLogDaemon daemon;
    refuseConnections();
    const Outcome run = runLogging(probe({"--forgetwifi", "--statuscapi"}));
    const std::string record = "<11>STAMP " + run.sender + textOf(connectionRecord);
    EXPECT_EQ(daemon.received(), (Datagrams{record, record}));
    EXPECT_EQ(run.output, "Failed to connect\nFailed to connect\n");
    EXPECT_EQ(devices_.console(), "");
}

TEST_F(SystemLog, goesToTheConsoleWithoutADaemon) {
    refuseConnections();
    const Outcome run = runLogging(probe({"--forgetwifi", "--statuscapi"}));
    const std::string line = run.sender + textOf(connectionRecord) + "\r\n";
    EXPECT_EQ(normalised(devices_.console()), line + line);
    EXPECT_EQ(run.output, "Failed to connect\nFailed to connect\n");
}

}  // namespace
