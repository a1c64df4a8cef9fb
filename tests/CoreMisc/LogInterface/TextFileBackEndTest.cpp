#include <gtest/gtest.h>

#include <filesystem>

#include "CoreMisc/LogInterface/TextFileBackEnd.h"
#include "tests/CoreMisc/LogTestSupport.h"

using com_qel::Korvel::LogInterface::TextFileBackEnd;
using namespace vantric_test;

TEST(TextFileBackEnd, emptiesAnOlderFileAtOnce) {
    const TemporaryFolder folder;
    writeFile(folder / "log", "old\n");
    const TextFileBackEnd backEnd(folder / "log");
    EXPECT_EQ(readFile(folder / "log"), "");
}

TEST(TextFileBackEnd, endsAndFlushesEachLineOfAnyLength) {
    const TemporaryFolder folder;
    TextFileBackEnd backEnd(folder / "log");
    std::string expected;
    for (const std::string& line :
         {std::string(), std::string("two\nlines"), std::string(100000, 'x')}) {
        backEnd.Write(line.c_str());
        expected += line + "\n";
        EXPECT_EQ(readFile(folder / "log"), expected);
    }
}

TEST(TextFileBackEnd, staysWithItsFileWhenThatIsRenamed) {
    const TemporaryFolder folder;
    TextFileBackEnd backEnd(folder / "log");
    backEnd.Write("one");
    std::filesystem::rename(folder / "log", folder / "moved");
    backEnd.Write("two");
    EXPECT_EQ(readFile(folder / "moved"), "one\ntwo\n");
    EXPECT_EQ(namesIn(folder.path()), Names{"moved"});
}

TEST(TextFileBackEnd, losesEveryLineOfAFileThatCannotBeOpened) {
    const TemporaryFolder folder;
    TextFileBackEnd backEnd(folder / "missing/log");
    backEnd.Write("one");
    std::filesystem::create_directory(folder / "missing");
    backEnd.Write("two");
    EXPECT_EQ(namesIn(folder / "missing"), Names());
}

TEST(TextFileBackEnd, losesTheLineThatFillsTheDiskAndEveryLaterOne) {
    const SmallDisk disk(65536);
    TextFileBackEnd backEnd(disk / "log");
    backEnd.Write("before");
    writeFile(disk / "space", std::string(40000, 's'));
    backEnd.Write(std::string(40000, 'x').c_str());
    std::filesystem::remove(disk / "space");
    backEnd.Write("after");
    const std::string content = readFile(disk / "log");
    EXPECT_EQ(content.substr(0, 7), "before\n");
    EXPECT_EQ(content.find("after"), std::string::npos);
}
