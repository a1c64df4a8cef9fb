#include <gtest/gtest.h>

#include <filesystem>

#include "CoreMisc/LogInterface/TextFileBackEnd.h"
#include "tests/CoreMisc/LogTestSupport.h"

using com_qel::Korvel::LogInterface::TextFileBackEnd;
using vantric_test::namesIn;
using vantric_test::readFile;
using vantric_test::SmallDisk;
using vantric_test::TemporaryFolder;
using vantric_test::writeFile;
using Names = std::vector<std::string>;

TEST(TextFileBackEnd, createsTheFileAtOnce) {
    const TemporaryFolder folder;
    const TextFileBackEnd backEnd(folder / "log");
    EXPECT_EQ(readFile(folder / "log"), "");
}

TEST(TextFileBackEnd, emptiesAnOlderFileAtOnce) {
    const TemporaryFolder folder;
    writeFile(folder / "log", "old\n");
    const TextFileBackEnd backEnd(folder / "log");
    EXPECT_EQ(readFile(folder / "log"), "");
}

TEST(TextFileBackEnd, endsAndFlushesEachLine) {
    const TemporaryFolder folder;
    TextFileBackEnd backEnd(folder / "log");
    backEnd.Write("one");
    EXPECT_EQ(readFile(folder / "log"), "one\n");
    backEnd.Write("");
    EXPECT_EQ(readFile(folder / "log"), "one\n\n");
    backEnd.Write("two\nlines");
    EXPECT_EQ(readFile(folder / "log"), "one\n\ntwo\nlines\n");
}

TEST(TextFileBackEnd, writesALineOfAnyLength) {
    const TemporaryFolder folder;
    const std::string line(100000, 'x');
    TextFileBackEnd backEnd(folder / "log");
    backEnd.Write(line.c_str());
    EXPECT_EQ(readFile(folder / "log"), line + "\n");
}

TEST(TextFileBackEnd, writesThroughItsInterface) {
    const TemporaryFolder folder;
    TextFileBackEnd backEnd(folder / "log");
    com_qel::Korvel::LogInterface::IBackEnd& asInterface = backEnd;
    asInterface.Write("line");
    EXPECT_EQ(readFile(folder / "log"), "line\n");
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
