// Log files in trouble: full disks, folders and rights that are missing. None of it shows in what
// the command prints or in how it ends.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/end_to_end/LogLines.h"
#include "tests/end_to_end/LoggedRun.h"
#include "tests/end_to_end/Transcript.h"
#include "tests/support/Privileges.h"
#include "tests/support/Roles.h"
#include "tests/support/SmallDisk.h"

namespace {

namespace fs = std::filesystem;
using vantric_test::bytesOf;
using vantric_test::connectionRecord;
using vantric_test::errorLog;
using vantric_test::failuresToConnect;
using vantric_test::LogSettings;
using vantric_test::normalised;
using vantric_test::printErrors;
using vantric_test::repeated;
using vantric_test::SmallDisk;
using vantric_test::smallestDisk;
using vantric_test::Tree;
using vantric_test::treeFolder;
using vantric_test::treeOf;
using vantric_test::WorkingFolder;

class LogDisk : public testing::Test {
  protected:
    LogDisk() { vantric_test::refuseConnections(); }
};

class LogDiskOfBothTypes : public LogDisk, public testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(, LogDiskOfBothTypes, testing::Values("text_file", "rolling_text_file"));

TEST_P(LogDiskOfBothTypes, aLogEndsWithTheLastByteOfTheDisk) {
    const SmallDisk disk(smallestDisk);
    EXPECT_EQ(printErrors(30, errorLog(disk.path(), GetParam())), failuresToConnect(30));
    const std::string content = bytesOf(disk / "log");
    EXPECT_EQ(content.size(), smallestDisk);
    const std::string whole = normalised(content.substr(0, content.rfind("\n[") + 1));
    EXPECT_EQ(whole, repeated(connectionRecord, 22));
    EXPECT_EQ(treeOf(disk.path()).size(), 1U);
}

TEST_P(LogDiskOfBothTypes, aLogOnAFullDiskStaysEmpty) {
    const SmallDisk disk(smallestDisk);
    std::ofstream(disk / "other") << std::string(smallestDisk, 'x');
    EXPECT_EQ(printErrors(2, errorLog(disk.path(), GetParam())), failuresToConnect(2));
    EXPECT_EQ(bytesOf(disk / "log"), "");
}

TEST_F(LogDisk, aRollThatFindsNoRoomLeavesAnEmptyLogForGood) {
    const SmallDisk disk(smallestDisk);
    for (const std::size_t count : {std::size_t{2}, std::size_t{3}}) {
        printErrors(count, errorLog(disk.path(), "rolling_text_file", "1"));
        EXPECT_EQ(treeOf(disk.path()), (Tree{{"log", ""}, {"log.old", connectionRecord}})) << count;
        fs::remove(disk / "log.old");
    }
}

TEST_F(LogDisk, aNegativeLimitRollsOnWhenItFindsNoRoom) {
    const SmallDisk disk(smallestDisk);
    printErrors(2, errorLog(disk.path(), "rolling_text_file", "-2"));
    EXPECT_EQ(treeOf(disk.path()), (Tree{{"log", ""}, {"log.old", connectionRecord}}));
    fs::remove(disk / "log.old");
    printErrors(3, errorLog(disk.path(), "rolling_text_file", "-2"));
    EXPECT_EQ(treeOf(disk.path()), (Tree{{"log", connectionRecord}, {"log.old", ""}}));
}

TEST_F(LogDisk, aFullDeviceTakesNothing) {
    LogSettings settings = errorLog("", "text_file");
    settings["VRAX_LOG_NAME"] = "/dev/full";
    EXPECT_EQ(printErrors(2, settings), failuresToConnect(2));
}

TEST_P(LogDiskOfBothTypes, aDiskThatCannotBeWrittenStaysAsItIs) {
    SmallDisk disk(smallestDisk);
    std::ofstream(disk / "log") << "content";
    disk.makeReadOnly();
    EXPECT_EQ(printErrors(2, errorLog(disk.path(), GetParam(), "0")), failuresToConnect(2));
    EXPECT_EQ(treeOf(disk.path()), (Tree{{"log", "content"}}));
}

TEST_P(LogDiskOfBothTypes, anEarlierLogIsEmptiedByTheFirstRecordEvenIfThatDoesNotPass) {
    const WorkingFolder folder;
    std::ofstream("log") << "content";
    LogSettings settings = errorLog("", GetParam());
    settings.erase("VRAX_LOG_LEVEL");
    EXPECT_EQ(printErrors(1, settings), failuresToConnect(1));
    EXPECT_EQ(folder.tree(), (Tree{{"log", ""}}));
}

TEST_P(LogDiskOfBothTypes, anEarlierLogStaysWhenThereIsNoRecord) {
    const WorkingFolder folder;
    std::ofstream("log") << "content";
    EXPECT_EQ(printErrors(0, errorLog("", GetParam())), "");
    EXPECT_EQ(folder.tree(), (Tree{{"log", "content"}}));
}

TEST_P(LogDiskOfBothTypes, aLinkIsFollowed) {
    const WorkingFolder folder;
    std::ofstream("target") << "content";
    fs::create_symlink("target", "log");
    printErrors(2, errorLog("", GetParam()));
    EXPECT_EQ(normalised(bytesOf("target")), repeated(connectionRecord, 2));
    EXPECT_TRUE(fs::is_symlink("log"));
}

// File modes that hold for root as well.
const vantric_test::RoleRegistration printsWithoutPrivileges(
    "printsWithoutPrivileges", [](const std::vector<std::string>& arguments) {
        if (!vantric_test::obeyFileModesBeyondExec()) {
            return -1;
        }
        const std::string printed = printErrors(2, errorLog(arguments.at(0), arguments.at(1), "1"));
        return printed == failuresToConnect(2) ? 0 : 1;
    });

void printTwoErrorsWithoutPrivileges(const fs::path& folder, const char* type) {
    const auto result =
        vantric_test::run(vantric_test::roleCommand("printsWithoutPrivileges", {folder, type}));
    EXPECT_TRUE(result.status && result.status->code() == 0) << result.output << result.errors;
}

TEST_P(LogDiskOfBothTypes, aFolderThatMayNotBeWrittenGetsNoLog) {
    const WorkingFolder folder;
    fs::create_directory("closed");
    ASSERT_EQ(chmod("closed", S_IRUSR | S_IXUSR), 0);
    printTwoErrorsWithoutPrivileges("closed", GetParam());
    EXPECT_EQ(folder.tree(), (Tree{{"closed", treeFolder}}));
}

TEST_P(LogDiskOfBothTypes, aFileThatMayNotBeWrittenStaysAsItIs) {
    const WorkingFolder folder;
    std::ofstream("log") << "content";
    ASSERT_EQ(chmod("log", S_IRUSR), 0);
    printTwoErrorsWithoutPrivileges("", GetParam());
    EXPECT_EQ(folder.tree(), (Tree{{"log", "content"}}));
}

TEST_F(LogDisk, aFileInAFolderThatMayNotBeWrittenIsEmptiedWhereItWouldBeSetAside) {
    const WorkingFolder folder;
    fs::create_directory("closed");
    std::ofstream("closed/log") << "content";
    ASSERT_EQ(chmod("closed", S_IRUSR | S_IXUSR), 0);
    printTwoErrorsWithoutPrivileges("closed", "text_file");
    EXPECT_EQ(normalised(bytesOf("closed/log")), repeated(connectionRecord, 2));
    printTwoErrorsWithoutPrivileges("closed", "rolling_text_file");
    EXPECT_EQ(folder.tree(), (Tree{{"closed", treeFolder}, {"closed/log", connectionRecord}}));
}

}  // namespace
