#include "tests/ctl/CtlRun.h"

#include <gtest/gtest.h>

#include "tests/support/ProcessFacts.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/RawSegment.h"

namespace vantric_test {

Command vantricctl(const Words& arguments) {
    Command command;
    command.program = VANTRICCTL_PATH;
    command.arguments = arguments;
    return command;
}

CtlResult runForJson(Words arguments) {
    arguments.emplace_back("--json");
    const Result result = run(vantricctl(arguments));
    EXPECT_TRUE(Json::accept(result.output)) << result.output << result.errors;
    return {result.status.code(), Json::parse(result.output, nullptr, false), result.errors};
}

std::map<std::string, std::string> sharedMemoryImage() {
    std::map<std::string, std::string> image;
    for (const std::string& name : sharedMemoryNames()) {
        const struct stat status = segmentStatus(name);
        image[name] = std::to_string(status.st_ino) + " " + std::to_string(status.st_mode) + " " +
                      std::to_string(status.st_uid) + " " + fileContent(segmentPath(name));
    }
    return image;
}

}  // namespace vantric_test
