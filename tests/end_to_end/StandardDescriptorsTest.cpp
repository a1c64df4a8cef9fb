// vantricprobe started with a standard descriptor closed.
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <iterator>

#include "tests/end_to_end/Bench.h"
#include "tests/end_to_end/LogLines.h"

namespace {

using namespace vantric_test;

// Runs a command that writes an error record for each failure to connect.
class StandardDescriptors : public testing::Test {
  protected:
    Result runPrepared(bool (*preparation)(), const std::vector<std::string>& arguments) const {
        refuseConnections();
        Command command = probe(arguments);
        command.environment["VRAX_LOG_LEVEL"] = "error";
        command.environment["VRAX_LOG_TYPE"] = "text_file";
        command.environment["VRAX_LOG_ROOT"] = folder_.path();
        command.preparations = {preparation};
        return run(command);
    }

    std::string log() const {
        std::ifstream file(folder_ / "dummy");
        return normalised({std::istreambuf_iterator<char>(file), {}});
    }

  private:
    TemporaryFolder folder_;
};

TEST_F(StandardDescriptors, whatACommandPrintsStaysOutOfTheLogFile) {
    const Result result =
        runPrepared([] { return close(STDOUT_FILENO) == 0; }, {"--forgetwifi", "--statuscapi"});
    EXPECT_EQ(result.status.code(), 0);
    const std::string line = std::string(connectionRecord) + "\n";
    EXPECT_EQ(log(), line + line);
}

TEST_F(StandardDescriptors, theLastWordsOfAnAbnormalEndStayOutOfTheLogFile) {
    const Result result =
        runPrepared([] { return close(STDERR_FILENO) == 0; }, {"--forgetwifi", "--setwifi"});
    EXPECT_EQ(result.status.signal(), SIGABRT);
    EXPECT_EQ(log(), std::string(connectionRecord) + "\n");
}

}  // namespace
