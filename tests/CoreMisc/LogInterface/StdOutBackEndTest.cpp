#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

#include "CoreMisc/LogInterface/StdOutBackEnd.h"
#include "tests/CoreMisc/LogTestSupport.h"

using com_qel::Korvel::LogInterface::StdOutBackEnd;
using namespace vantric_test;

namespace {

off_t bytesInStandardOutput() {
    struct stat status = {};
    fstat(STDOUT_FILENO, &status);
    return status.st_size;
}

const RoleRegistration writesLines("writesLines", [](const Arguments& lines) {
    StdOutBackEnd backEnd;
    for (const std::string& line : lines) {
        backEnd.Write(line.c_str());
    }
    return 0;
});

const RoleRegistration writesWithoutFlushing("writesWithoutFlushing", [](const Arguments&) {
    std::printf("before ");
    StdOutBackEnd().Write("line");
    const off_t before = bytesInStandardOutput();
    std::fflush(stdout);
    const off_t after = bytesInStandardOutput();
    return before == 0 && after == 12 ? 0 : 1;
});

}  // namespace

TEST(StdOutBackEnd, endsEachLineAndInterpretsNothing) {
    const Result result = runRoleWith({}, "writesLines", {"one", "", "two\nlines", "100%s %n"});
    EXPECT_EQ(result.output, "one\n\ntwo\nlines\n100%s %n\n");
    EXPECT_EQ(result.errors, "");
}

// Standard output is a file here, so the C stream holds its text back until it is flushed.
TEST(StdOutBackEnd, leavesFlushingToTheStreamThatItSharesWithTheProgram) {
    const Result result = runRoleWith({}, "writesWithoutFlushing");
    EXPECT_EQ(result.status.code(), 0);
    EXPECT_EQ(result.output, "before line\n");
}

TEST(StdOutBackEnd, losesItsLinesWhenStandardOutputIsFull) {
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    ASSERT_NE(full, -1);
    Command command = roleCommand("writesLines", {"one", "two"});
    command.standardOutput = full;
    const Result result = run(command);
    close(full);
    EXPECT_EQ(result.status.code(), 0);
    EXPECT_EQ(result.errors, "");
}
