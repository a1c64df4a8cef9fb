#include <gtest/gtest.h>

#include <filesystem>

#include "CoreMisc/LogInterface/RollingTextFileBackEnd.h"
#include "tests/CoreMisc/LogTestSupport.h"

using com_qel::Korvel::LogInterface::RollingTextFileBackEnd;
using vantric_test::namesIn;
using vantric_test::readFile;
using vantric_test::SmallDisk;
using vantric_test::TemporaryFolder;
using vantric_test::writeFile;
using Names = std::vector<std::string>;

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

}  // namespace

TEST(RollingTextFileBackEnd, createsTheFileAtOnce) {
    const TemporaryFolder folder;
    const RollingTextFileBackEnd backEnd(folder / "log", 10);
    EXPECT_EQ(readFile(folder / "log"), "");
}

TEST(RollingTextFileBackEnd, emptiesAnOlderFileAndLeavesTheOldGenerationAlone) {
    const TemporaryFolder folder;
    writeFile(folder / "log", "older\n");
    writeFile(folder / "log.old", "oldest\n");
    RollingTextFileBackEnd backEnd(folder / "log", 10);
    backEnd.Write("line");
    EXPECT_EQ(readFile(folder / "log"), "line\n");
    EXPECT_EQ(readFile(folder / "log.old"), "oldest\n");
}

TEST(RollingTextFileBackEnd, endsAndFlushesEachLine) {
    const TemporaryFolder folder;
    RollingTextFileBackEnd backEnd(folder / "log", 5000);
    backEnd.Write("one");
    EXPECT_EQ(readFile(folder / "log"), "one\n");
    backEnd.Write("two");
    EXPECT_EQ(readFile(folder / "log"), "one\ntwo\n");
}

TEST(RollingTextFileBackEnd, flushesTheLineThatOpensANewFile) {
    const TemporaryFolder folder;
    RollingTextFileBackEnd backEnd(folder / "log", 0);
    backEnd.Write("one");
    backEnd.Write("two");
    EXPECT_EQ(readFile(folder / "log"), "two\n");
}

TEST(RollingTextFileBackEnd, opensANewFileWithTheLineThatFindsTheOldOneTooLong) {
    const TemporaryFolder folder;
    const std::string first(30, '1');
    const std::string second(30, '2');
    RollingTextFileBackEnd backEnd(folder / "log", 10);
    backEnd.Write(first.c_str());
    EXPECT_EQ(readFile(folder / "log"), first + "\n");
    EXPECT_FALSE(isRolled(folder));
    backEnd.Write(second.c_str());
    EXPECT_EQ(readFile(folder / "log"), second + "\n");
    EXPECT_EQ(readFile(folder / "log.old"), first + "\n");
}

TEST(RollingTextFileBackEnd, doesNotRollAFileThatIsExactlyAsLongAsTheLimit) {
    const TemporaryFolder folder;
    RollingTextFileBackEnd backEnd(folder / "log", 10);
    backEnd.Write("9 letters");
    backEnd.Write("next");
    EXPECT_EQ(readFile(folder / "log"), "9 letters\nnext\n");
    EXPECT_FALSE(isRolled(folder));
}

TEST(RollingTextFileBackEnd, rollsAFileThatIsOneByteLongerThanTheLimit) {
    const TemporaryFolder folder;
    RollingTextFileBackEnd backEnd(folder / "log", 10);
    backEnd.Write("10 letters");
    backEnd.Write("next");
    EXPECT_EQ(readFile(folder / "log"), "next\n");
    EXPECT_EQ(readFile(folder / "log.old"), "10 letters\n");
}

TEST(RollingTextFileBackEnd, countsFromTheStartOfEachFile) {
    const TemporaryFolder folder;
    RollingTextFileBackEnd backEnd(folder / "log", 10);
    for (const char* line : {"first file", "second", "also second", "third"}) {
        backEnd.Write(line);
    }
    EXPECT_EQ(readFile(folder / "log"), "third\n");
    EXPECT_EQ(readFile(folder / "log.old"), "second\nalso second\n");
}

TEST(RollingTextFileBackEnd, keepsTheLastLineAndTheOneBeforeWithALimitOfZero) {
    const TemporaryFolder folder;
    RollingTextFileBackEnd backEnd(folder / "log", 0);
    backEnd.Write("one");
    EXPECT_FALSE(isRolled(folder));
    backEnd.Write("two");
    backEnd.Write("three");
    EXPECT_EQ(readFile(folder / "log"), "three\n");
    EXPECT_EQ(readFile(folder / "log.old"), "two\n");
    EXPECT_EQ(namesIn(folder.path()), (Names{"log", "log.old"}));
}

TEST(RollingTextFileBackEnd, rollsEvenAnEmptyFileWithANegativeLimit) {
    for (const uint32_t limit : {minusOne, minusTwo, greatestPositive + 1}) {
        const TemporaryFolder folder;
        RollingTextFileBackEnd backEnd(folder / "log", limit);
        backEnd.Write("one");
        EXPECT_EQ(readFile(folder / "log.old"), "");
        backEnd.Write("two");
        EXPECT_EQ(readFile(folder / "log"), "two\n");
        EXPECT_EQ(readFile(folder / "log.old"), "one\n");
    }
}

TEST(RollingTextFileBackEnd, neverRollsWithTheGreatestPositiveLimit) {
    const TemporaryFolder folder;
    RollingTextFileBackEnd backEnd(folder / "log", greatestPositive);
    backEnd.Write("one");
    backEnd.Write("two");
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

TEST(RollingTextFileBackEnd, losesEveryLineFromARollOnThatCannotReopenTheFile) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "sub");
    RollingTextFileBackEnd backEnd(folder / "sub/log", 0);
    backEnd.Write("one");
    std::filesystem::remove_all(folder / "sub");
    backEnd.Write("two");
    std::filesystem::create_directory(folder / "sub");
    backEnd.Write("three");
    backEnd.Write("four");
    EXPECT_EQ(namesIn(folder / "sub"), Names());
}

TEST(RollingTextFileBackEnd, goesOnInAnEmptiedFileWhenTheOldGenerationCannotBeReplaced) {
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder / "log.old/occupied");
    RollingTextFileBackEnd backEnd(folder / "log", 0);
    backEnd.Write("one");
    backEnd.Write("two");
    EXPECT_EQ(readFile(folder / "log"), "two\n");
    EXPECT_EQ(namesIn(folder / "log.old"), Names{"occupied"});
}

TEST(RollingTextFileBackEnd, goesOnInANewFileWhenTheLiveOneHasDisappeared) {
    const TemporaryFolder folder;
    RollingTextFileBackEnd backEnd(folder / "log", 0);
    backEnd.Write("one");
    backEnd.Write("two");
    std::filesystem::remove(folder / "log");
    backEnd.Write("three");
    EXPECT_EQ(readFile(folder / "log"), "three\n");
    EXPECT_FALSE(isRolled(folder));
}

TEST(RollingTextFileBackEnd, neverRollsAFailedStreamWithAPositiveLimit) {
    const SmallDisk disk(diskSize);
    RollingTextFileBackEnd backEnd(disk / "log", 10);
    backEnd.Write(moreThanTheDisk().c_str());
    backEnd.Write("later");
    EXPECT_EQ(namesIn(disk / ""), Names{"log"});
}

TEST(RollingTextFileBackEnd, losesEveryLineOnceTheDiskWasFull) {
    const SmallDisk disk(diskSize);
    RollingTextFileBackEnd backEnd(disk / "log", greatestPositive);
    backEnd.Write("before");
    writeFile(disk / "space", std::string(40000, 's'));
    backEnd.Write(std::string(40000, 'x').c_str());
    std::filesystem::remove(disk / "space");
    backEnd.Write("after");
    const std::string content = readFile(disk / "log");
    EXPECT_EQ(content.substr(0, 7), "before\n");
    EXPECT_EQ(content.find("after"), std::string::npos);
}

TEST(RollingTextFileBackEnd, neverRollsAFailedStreamWithALimitOfMinusOne) {
    const SmallDisk disk(diskSize);
    RollingTextFileBackEnd backEnd(disk / "log", minusOne);
    backEnd.Write(moreThanTheDisk().c_str());
    const std::string whatFitted = readFile(disk / "log");
    backEnd.Write("later");
    EXPECT_EQ(readFile(disk / "log"), whatFitted);
    EXPECT_EQ(readFile(disk / "log.old"), "");
}

TEST(RollingTextFileBackEnd, rollsAFailedStreamWithALesserLimitAndRecovers) {
    const SmallDisk disk(diskSize);
    RollingTextFileBackEnd backEnd(disk / "log", minusTwo);
    backEnd.Write(moreThanTheDisk().c_str());
    const std::string whatFitted = readFile(disk / "log");
    ASSERT_FALSE(whatFitted.empty());
    backEnd.Write("lost: the old generation still fills the disk");
    EXPECT_EQ(readFile(disk / "log"), "");
    EXPECT_EQ(readFile(disk / "log.old"), whatFitted);
    backEnd.Write("written");
    EXPECT_EQ(readFile(disk / "log"), "written\n");
    EXPECT_EQ(readFile(disk / "log.old"), "");
}
