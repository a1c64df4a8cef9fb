#include <gtest/gtest.h>

#include <filesystem>

#include "CoreMisc/LogInterface/RollingTextFileBackEnd.h"
#include "tests/CoreMisc/LogTestSupport.h"
#include "tests/support/Allocations.h"

using com_qel::Korvel::LogInterface::RollingTextFileBackEnd;
using namespace vantric_test;

namespace {

constexpr uint32_t minusOne = 4294967295U;
constexpr uint32_t minusTwo = 4294967294U;
constexpr uint32_t greatestPositive = 2147483647U;

constexpr std::size_t diskSize = 65536;

std::string moreThanTheDisk() {
    return std::string(2 * diskSize, 'x');
}

bool isRolled(const TemporaryFolder& folder) {
    return std::filesystem::exists(folder / "log.old");
}

void write(RollingTextFileBackEnd& backEnd, std::initializer_list<const char*> lines) {
    for (const char* line : lines) {
        backEnd.Write(line);
    }
}

// Expects the content of the live file and of the old generation.
template <class Folder>
void expectFiles(const Folder& folder, const std::string& live, const std::string& old) {
    EXPECT_EQ(readFile(folder / "log"), live);
    EXPECT_EQ(readFile(folder / "log.old"), old);
}

}  // namespace

TEST(RollingTextFileBackEnd, emptiesAnOlderFileAtOnceAndLeavesTheOldGenerationAlone) {
    const TemporaryFolder folder;
    writeFile(folder / "log", "older\n");
    writeFile(folder / "log.old", "oldest\n");
    RollingTextFileBackEnd backEnd(folder / "log", 10);
    EXPECT_EQ(readFile(folder / "log"), "");
    backEnd.Write("line");
    expectFiles(folder, "line\n", "oldest\n");
}

TEST(RollingTextFileBackEnd, rollsOnlyAFileThatIsLongerThanTheLimit) {
    const TemporaryFolder folder;
    RollingTextFileBackEnd backEnd(folder / "log", 10);
    write(backEnd, {"9 letters", "next"});
    EXPECT_EQ(readFile(folder / "log"), "9 letters\nnext\n");
    EXPECT_FALSE(isRolled(folder));
    backEnd.Write("10 letters");
    expectFiles(folder, "10 letters\n", "9 letters\nnext\n");
    backEnd.Write("last");
    expectFiles(folder, "last\n", "10 letters\n");
}

TEST(RollingTextFileBackEnd, keepsTheLastLineAndTheOneBeforeWithALimitOfZero) {
    const TemporaryFolder folder;
    RollingTextFileBackEnd backEnd(folder / "log", 0);
    backEnd.Write("one");
    EXPECT_FALSE(isRolled(folder));
    write(backEnd, {"two", "three"});
    expectFiles(folder, "three\n", "two\n");
    EXPECT_EQ(namesIn(folder.path()), (Names{"log", "log.old"}));
}

TEST(RollingTextFileBackEnd, rollsWithoutMemory) {
    const TemporaryFolder folder;
    RollingTextFileBackEnd backEnd(folder / "log", 0);
    backEnd.Write("one");
    {
        const Allocations noMemory(1);
        EXPECT_NO_THROW(backEnd.Write("two"));
    }
    expectFiles(folder, "two\n", "one\n");
}

TEST(RollingTextFileBackEnd, rollsEvenAnEmptyFileWithANegativeLimit) {
    for (const uint32_t limit : {minusOne, minusTwo, greatestPositive + 1}) {
        const TemporaryFolder folder;
        RollingTextFileBackEnd backEnd(folder / "log", limit);
        backEnd.Write("one");
        EXPECT_EQ(readFile(folder / "log.old"), "");
        backEnd.Write("two");
        expectFiles(folder, "two\n", "one\n");
    }
}

TEST(RollingTextFileBackEnd, neverRollsWithTheGreatestPositiveLimit) {
    const TemporaryFolder folder;
    RollingTextFileBackEnd backEnd(folder / "log", greatestPositive);
    write(backEnd, {"one", "two"});
    EXPECT_EQ(readFile(folder / "log"), "one\ntwo\n");
    EXPECT_FALSE(isRolled(folder));
}

TEST(RollingTextFileBackEnd, losesEveryLineOfAFileThatCannotBeOpened) {
    for (const uint32_t limit : {uint32_t{10}, minusTwo}) {
        const TemporaryFolder folder;
        RollingTextFileBackEnd backEnd(folder / "missing/log", limit);
        backEnd.Write("one");
        std::filesystem::create_directory(folder / "missing");
        backEnd.Write("two");
        EXPECT_EQ(namesIn(folder / "missing"), Names());
    }
}

TEST(RollingTextFileBackEnd, losesEveryLineAfterARollThatCannotReopenTheFile) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "sub");
    RollingTextFileBackEnd backEnd(folder / "sub/log", 0);
    backEnd.Write("one");
    std::filesystem::remove_all(folder / "sub");
    backEnd.Write("two");
    std::filesystem::create_directory(folder / "sub");
    write(backEnd, {"three", "four"});
    EXPECT_EQ(namesIn(folder / "sub"), Names());
}

TEST(RollingTextFileBackEnd, replacesAnEmptyFolderInTheWayOfTheOldGeneration) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "log.old");
    RollingTextFileBackEnd backEnd(folder / "log", 0);
    write(backEnd, {"one", "two"});
    EXPECT_EQ(readFile(folder / "log.old"), "one\n");
}

TEST(RollingTextFileBackEnd, goesOnInAnEmptiedFileWhenTheOldGenerationCannotBeReplaced) {
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder / "log.old/occupied");
    RollingTextFileBackEnd backEnd(folder / "log", 0);
    write(backEnd, {"one", "two"});
    EXPECT_EQ(readFile(folder / "log"), "two\n");
    EXPECT_EQ(namesIn(folder / "log.old"), Names{"occupied"});
}

TEST(RollingTextFileBackEnd, goesOnInANewFileWhenTheLiveOneHasDisappeared) {
    const TemporaryFolder folder;
    RollingTextFileBackEnd backEnd(folder / "log", 0);
    write(backEnd, {"one", "two"});
    std::filesystem::remove(folder / "log");
    backEnd.Write("three");
    EXPECT_EQ(readFile(folder / "log"), "three\n");
    EXPECT_FALSE(isRolled(folder));
}

TEST(RollingTextFileBackEnd, losesEveryLineAfterAFullDiskWithoutRolling) {
    const SmallDisk disk(diskSize);
    RollingTextFileBackEnd backEnd(disk / "log", 10);
    backEnd.Write(moreThanTheDisk().c_str());
    writeFile(disk / "log", "");
    backEnd.Write("later");
    EXPECT_EQ(readFile(disk / "log"), "");
    EXPECT_EQ(namesIn(disk / ""), Names{"log"});
}

// A failed file's position of -1 outgrows a limit below -1 only.
TEST(RollingTextFileBackEnd, neverRollsAFailedFileWithALimitOfMinusOne) {
    const SmallDisk disk(diskSize);
    RollingTextFileBackEnd backEnd(disk / "log", minusOne);
    backEnd.Write(moreThanTheDisk().c_str());
    const std::string whatFitted = readFile(disk / "log");
    backEnd.Write("later");
    expectFiles(disk, whatFitted, "");
}

TEST(RollingTextFileBackEnd, rollsAFailedFileWithALesserLimitAndRecovers) {
    const SmallDisk disk(diskSize);
    RollingTextFileBackEnd backEnd(disk / "log", minusTwo);
    backEnd.Write(moreThanTheDisk().c_str());
    const std::string whatFitted = readFile(disk / "log");
    ASSERT_FALSE(whatFitted.empty());
    backEnd.Write("lost: the old generation still fills the disk");
    expectFiles(disk, "", whatFitted);
    backEnd.Write("written");
    expectFiles(disk, "written\n", "");
}
