#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

#include "CoreMisc/LogInterface/StdOutBackEnd.h"
#include "tests/CoreMisc/LogTestSupport.h"

using com_qel::Korvel::LogInterface::StdOutBackEnd;
using vantric_test::Result;
using vantric_test::RoleRegistration;
using vantric_test::runRoleWith;
using Arguments = std::vector<std::string>;

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

// Standard output is a file here, so the stream holds its text back until it is flushed.
const RoleRegistration writesWithoutFlushing("writesWithoutFlushing", [](const Arguments&) {
    StdOutBackEnd().Write("line");
    const off_t before = bytesInStandardOutput();
    std::fflush(stdout);
    const off_t after = bytesInStandardOutput();
    return before == 0 && after == 5 ? 0 : 1;
});

const RoleRegistration writesAmongOtherOutput("writesAmongOtherOutput", [](const Arguments&) {
    StdOutBackEnd backEnd;
    std::printf("before ");
    backEnd.Write("line");
    std::printf("after");
    return 0;
});

}  // namespace

TEST(StdOutBackEnd, endsEachLine) {
    const Result result = runRoleWith({}, "writesLines", {"one", "", "two\nlines"});
    EXPECT_EQ(result.output, "one\n\ntwo\nlines\n");
    EXPECT_EQ(result.errors, "");
}

TEST(StdOutBackEnd, interpretsNothingInALine) {
    EXPECT_EQ(runRoleWith({}, "writesLines", {"100%s %n"}).output, "100%s %n\n");
}

TEST(StdOutBackEnd, leavesFlushingToTheStream) {
    EXPECT_EQ(runRoleWith({}, "writesWithoutFlushing").status->code(), 0);
}

TEST(StdOutBackEnd, keepsItsPlaceAmongTheOutputOfTheProgram) {
    EXPECT_EQ(runRoleWith({}, "writesAmongOtherOutput").output, "before line\nafter");
}

TEST(StdOutBackEnd, losesItsLinesWhenStandardOutputIsFull) {
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    ASSERT_NE(full, -1);
    vantric_test::Command command = vantric_test::roleCommand("writesLines", {"one", "two"});
    command.standardOutput = full;
    const Result result = vantric_test::run(command);
    close(full);
    EXPECT_EQ(result.status->code(), 0);
    EXPECT_EQ(result.errors, "");
}
