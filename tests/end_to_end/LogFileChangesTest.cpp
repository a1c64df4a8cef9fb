// Log files that change under the hands of a running command.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/end_to_end/LogLines.h"
#include "tests/end_to_end/LoggedRun.h"
#include "tests/end_to_end/SteadyLogger.h"
#include "tests/end_to_end/Transcript.h"
#include "tests/support/SmallDisk.h"

namespace {

namespace fs = std::filesystem;
using vantric_test::bytesOf;
using vantric_test::countOf;
using vantric_test::errorLog;
using vantric_test::LogSettings;
using vantric_test::normalised;
using vantric_test::repeated;
using vantric_test::SmallDisk;
using vantric_test::smallestDisk;
using vantric_test::staleHostnameRecord;
using vantric_test::SteadyLogger;
using vantric_test::Tree;
using vantric_test::treeFolder;
using vantric_test::WorkingFolder;

class LogFileChangesOfBothTypes : public testing::TestWithParam<const char*> {};

INSTANTIATE_TEST_SUITE_P(, LogFileChangesOfBothTypes,
                         testing::Values("text_file", "rolling_text_file"));

TEST_P(LogFileChangesOfBothTypes, aLogThatMetAFullDiskDoesNotGoOnWhenThereIsRoomAgain) {
    const SmallDisk disk(2 * smallestDisk);
    SteadyLogger logger(errorLog(disk.path(), GetParam(), "100000"));
    logger.pause();
    std::ofstream(disk / "other") << std::string(smallestDisk, 'x');
    logger.resume();
    // More records than the disk has room for.
    logger.awaitRecords(30);
    logger.pause();
    EXPECT_EQ(bytesOf(disk / "log").size(), smallestDisk);
    fs::remove(disk / "other");
    logger.resume();
    logger.awaitRecords(2);
    EXPECT_GT(logger.finish(), 32U);
    EXPECT_EQ(bytesOf(disk / "log").size(), smallestDisk);
}

TEST(LogFileChanges, aTextFileThatVanishesDoesNotComeBack) {
    const WorkingFolder folder;
    SteadyLogger logger(errorLog("", "text_file"));
    fs::remove("log");
    logger.awaitRecords(2);
    logger.finish();
    EXPECT_EQ(folder.tree(), Tree());
}

TEST(LogFileChanges, aTextFileThatIsMovedGetsTheRecords) {
    const WorkingFolder folder;
    SteadyLogger logger(errorLog("", "text_file"));
    fs::rename("log", "moved");
    logger.awaitRecords(2);
    const std::size_t count = logger.finish();
    EXPECT_EQ(folder.tree(), (Tree{{"moved", repeated(staleHostnameRecord, count)}}));
}

TEST(LogFileChanges, aRollingFileThatVanishesComesBackWithTheNextRoll) {
    const WorkingFolder folder;
    SteadyLogger logger(errorLog("", "rolling_text_file", "1"));
    logger.pause();
    fs::remove("log");
    fs::remove("log.old");
    logger.resume();
    logger.awaitRecords(2);
    logger.finish();
    EXPECT_EQ(folder.tree(),
              (Tree{{"log", staleHostnameRecord}, {"log.old", staleHostnameRecord}}));
}

TEST(LogFileChanges, aRollingFileWhoseFolderVanishesDoesNotComeBackWithTheFolder) {
    const WorkingFolder folder;
    fs::create_directory("sub");
    SteadyLogger logger(errorLog("sub", "rolling_text_file", "1"));
    logger.pause();
    fs::remove_all("sub");
    logger.resume();
    logger.awaitRecords(1);
    fs::create_directory("sub");
    logger.awaitRecords(2);
    logger.finish();
    EXPECT_EQ(folder.tree(), (Tree{{"sub", treeFolder}}));
}

TEST(LogFileChanges, aTextFileThatIsCutGoesOnWhereItWas) {
    const WorkingFolder folder;
    SteadyLogger logger(errorLog("", "text_file"));
    logger.pause();
    const std::size_t before = bytesOf("log").size();
    fs::resize_file("log", 0);
    logger.resume();
    logger.awaitRecords(1);
    logger.finish();
    const std::string content = bytesOf("log");
    EXPECT_EQ(content.substr(0, before), std::string(before, '\0'));
    const std::string rest = normalised(content.substr(before));
    EXPECT_EQ(rest, repeated(staleHostnameRecord, countOf(rest, staleHostnameRecord)));
    EXPECT_NE(rest, "");
}

}  // namespace
