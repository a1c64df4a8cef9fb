// What the logger makes of its settings: which sink, on which path, at which threshold.
#include <gtest/gtest.h>
#include <syslog.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <filesystem>

#include "CoreMisc/LogInterface/Logger.h"
#include "CoreMisc/src/VyLog.h"
#include "tests/CoreMisc/LogTestSupport.h"
#include "tests/CoreMisc/SystemLogRecorder.h"

using com_qel::VyLog;
using com_qel::Korvel::LogInterface::FormatLine;
using com_qel::Korvel::LogInterface::Logger;
using com_qel::Korvel::LogInterface::SeverityError;
using vantric_test::errorRecord;
using vantric_test::LogSettings;
using vantric_test::namesIn;
using vantric_test::readFile;
using vantric_test::recordsIn;
using vantric_test::Result;
using vantric_test::RoleRegistration;
using vantric_test::runRoleWith;
using vantric_test::TemporaryFolder;
using vantric_test::writeErrorsRole;
using vantric_test::writeFile;
using Arguments = std::vector<std::string>;
using Records = std::vector<std::string>;
using Names = std::vector<std::string>;

namespace {

constexpr int errorsPerRun = 60;

LogSettings settingsOf(const std::string& type, const std::string& root, const std::string& name) {
    return {{"VRAX_LOG_LEVEL", "trace"},
            {"VRAX_LOG_TYPE", type},
            {"VRAX_LOG_ROOT", root},
            {"VRAX_LOG_NAME", name}};
}

// Writes an error record after moving to the folder named first.
const RoleRegistration writesInAFolder("writesInAFolder", [](const Arguments& arguments) {
    std::filesystem::current_path(arguments.at(0));
    VyLog(VyLog::Error, "folder/Source", 250, 0).stream() << "text";
    return 0;
});

const RoleRegistration configuresByName("configuresByName", [](const Arguments& arguments) {
    std::filesystem::current_path(arguments.at(0));
    Logger::Instance().ConfigureFromEnvironment(arguments.at(1), FormatLine);
    Logger::Instance().Dispatch(SeverityError, "text");
    return static_cast<int>(Logger::Instance().Threshold());
});

const RoleRegistration configuresTwice("configuresTwice", [](const Arguments&) {
    Logger& logger = Logger::Instance();
    logger.ConfigureFromEnvironment("first", FormatLine);
    logger.ConfigureFromEnvironment("second", FormatLine);
    logger.Dispatch(SeverityError, "text");
    return 0;
});

const RoleRegistration writesManyErrors("writesManyErrors", [](const Arguments&) {
    for (int number = 0; number < errorsPerRun; ++number) {
        VyLog(VyLog::Error, "folder/Source", 250, 0).stream() << "number " << number;
    }
    return 0;
});

const RoleRegistration usesTheSystemLog("usesTheSystemLog", [](const Arguments&) {
    VyLog(VyLog::Error, "folder/Source", 250, 0).stream() << "100%s";
    VyLog(VyLog::Warning, "folder/Source", 250, 0).stream() << "text";
    for (const auto& opening : vantric_test::systemLog().openings) {
        std::printf("open %d %d %d\n", opening.hasIdentity, opening.options, opening.facility);
    }
    for (const auto& entry : vantric_test::systemLog().entries) {
        std::printf("%d %s\n", entry.priority, entry.text.c_str());
    }
    return 0;
});

}  // namespace

TEST(LoggerConfiguration, writesErrorsToTheConsoleWhenOnlyTheLevelIsSet) {
    const TemporaryFolder folder;
    const Result result =
        runRoleWith({{"VRAX_LOG_LEVEL", "error"}}, "writesInAFolder", {folder.path()});
    EXPECT_EQ(recordsIn(result.output), Records{errorRecord("text")});
    EXPECT_EQ(namesIn(folder.path()), Names());
}

TEST(LoggerConfiguration, startsAtTheFatalThreshold) {
    const TemporaryFolder folder;
    const Result result = runRoleWith({}, "configuresByName", {folder.path(), "name"});
    EXPECT_EQ(result.status->code(), 5);
    EXPECT_EQ(recordsIn(result.output), Records{"error: text"});
}

TEST(LoggerConfiguration, takesTheThresholdFromTheLevel) {
    const TemporaryFolder folder;
    for (const int level : {0, 1, 2, 3, 4, 5}) {
        const Result result = runRoleWith({{"VRAX_LOG_LEVEL", std::to_string(level)}},
                                          "configuresByName", {folder.path(), "name"});
        EXPECT_EQ(result.status->code(), level);
    }
}

TEST(LoggerConfiguration, keepsTheConsoleForATypeOutOfRange) {
    const Result result = runRoleWith({{"VRAX_LOG_LEVEL", "error"}, {"VRAX_LOG_TYPE", "9"}},
                                      writeErrorsRole, {"text"});
    EXPECT_EQ(recordsIn(result.output), Records{errorRecord("text")});
}

TEST(LoggerConfiguration, writesNothingForTheInMemoryType) {
    const TemporaryFolder folder;
    for (const char* type : {"inmemory", "3"}) {
        const Result result =
            runRoleWith(settingsOf(type, folder.path(), "log"), "writesInAFolder", {folder.path()});
        EXPECT_EQ(result.status->code(), 0);
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(namesIn(folder.path()), Names());
    }
}

TEST(LoggerConfiguration, takesTheThresholdFromTheLevelWithoutASink) {
    const TemporaryFolder folder;
    const Result result = runRoleWith({{"VRAX_LOG_LEVEL", "1"}, {"VRAX_LOG_TYPE", "inmemory"}},
                                      "configuresByName", {folder.path(), "name"});
    EXPECT_EQ(result.status->code(), 1);
}

TEST(LoggerConfiguration, emptiesTheTextFileAndWritesEveryLineToIt) {
    const TemporaryFolder folder;
    writeFile(folder / "client.log", "from an earlier process\n");
    const Result result = runRoleWith(settingsOf("text_file", folder.path(), "client.log"),
                                      writeErrorsRole, {"one", "two"});
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(recordsIn(readFile(folder / "client.log")),
              (Records{errorRecord("one"), errorRecord("two")}));
    EXPECT_EQ(namesIn(folder.path()), Names{"client.log"});
}

TEST(LoggerConfiguration, takesAnEmptyLevelForTraceAndAnEmptyTypeForATextFile) {
    const TemporaryFolder folder;
    const Result result = runRoleWith({{"VRAX_LOG_LEVEL", ""}, {"VRAX_LOG_TYPE", ""}},
                                      "configuresByName", {folder.path(), "given name"});
    EXPECT_EQ(result.status->code(), 0);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(recordsIn(readFile(folder / "given name")), Records{"error: text"});
}

TEST(LoggerConfiguration, putsTheFileIntoTheWorkingFolderWithoutARoot) {
    const TemporaryFolder folder;
    runRoleWith(settingsOf("text_file", "", "log"), "writesInAFolder", {folder.path()});
    EXPECT_EQ(recordsIn(readFile(folder / "log")), Records{errorRecord("text")});
}

// A doubled slash names the same file; only the longest path there may be has no room for it.
TEST(LoggerConfiguration, doesNotDoubleASlashAtTheEndOfTheRoot) {
    const TemporaryFolder folder;
    const std::string name = "log";
    std::string root = folder.path();
    root.append(PATH_MAX - 1 - root.size() - name.size(), '/');
    runRoleWith(settingsOf("text_file", root, name), writeErrorsRole, {"text"});
    EXPECT_EQ(recordsIn(readFile(folder / "log")), Records{errorRecord("text")});
}

TEST(LoggerConfiguration, putsASlashBetweenRootAndName) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "sub");
    runRoleWith(settingsOf("text_file", folder / "sub", "log"), writeErrorsRole, {"text"});
    EXPECT_EQ(namesIn(folder.path()), Names{"sub"});
    EXPECT_EQ(namesIn(folder / "sub"), Names{"log"});
}

TEST(LoggerConfiguration, ignoresTheRootForAnAbsoluteName) {
    const TemporaryFolder folder;
    const TemporaryFolder root;
    runRoleWith(settingsOf("text_file", root.path(), folder / "log"), writeErrorsRole, {"text"});
    EXPECT_EQ(recordsIn(readFile(folder / "log")), Records{errorRecord("text")});
    EXPECT_EQ(namesIn(root.path()), Names());
}

TEST(LoggerConfiguration, losesEveryLineOfAFileThatCannotBeOpened) {
    const TemporaryFolder folder;
    for (const char* type : {"text_file", "rolling_text_file"}) {
        const Result result = runRoleWith(settingsOf(type, folder / "missing", "log"),
                                          writeErrorsRole, {"one", "two"});
        EXPECT_EQ(result.status->code(), 0);
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.errors, "");
        EXPECT_EQ(namesIn(folder.path()), Names());
    }
}

TEST(LoggerConfiguration, losesEveryLineOfAFullDevice) {
    const Result result =
        runRoleWith(settingsOf("text_file", "", "/dev/full"), writeErrorsRole, {"one", "two"});
    EXPECT_EQ(result.status->code(), 0);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "");
}

TEST(LoggerConfiguration, rollsBeforeEveryLineWhenTheSizeIsNoNumber) {
    const TemporaryFolder folder;
    LogSettings settings = settingsOf("rolling_text_file", folder.path(), "log");
    settings["VRAX_LOG_SIZE"] = "abc";
    runRoleWith(settings, writeErrorsRole, {"one", "two", "three"});
    EXPECT_EQ(recordsIn(readFile(folder / "log")), Records{errorRecord("three")});
    EXPECT_EQ(recordsIn(readFile(folder / "log.old")), Records{errorRecord("two")});
}

TEST(LoggerConfiguration, rollsAnEmptyFileWhenTheSizeIsMinusOne) {
    const TemporaryFolder folder;
    LogSettings settings = settingsOf("1", folder.path(), "log");
    settings["VRAX_LOG_SIZE"] = "-1";
    runRoleWith(settings, writeErrorsRole, {"one"});
    EXPECT_EQ(recordsIn(readFile(folder / "log")), Records{errorRecord("one")});
    EXPECT_EQ(readFile(folder / "log.old"), "");
}

TEST(LoggerConfiguration, rollsOnceAFileHasGrownPastFiveThousandBytesByDefault) {
    const TemporaryFolder folder;
    runRoleWith(settingsOf("rolling_text_file", folder.path(), "log"), "writesManyErrors");
    const std::string old = readFile(folder / "log.old");
    const std::size_t linesOfLastRecord = 2;
    const std::string lastRecord = old.substr(old.rfind("\n["));
    EXPECT_GT(old.size(), 5000U);
    EXPECT_LE(old.size() - lastRecord.size(), 5000U);
    EXPECT_EQ(std::count(lastRecord.begin() + 1, lastRecord.end(), '\n'), linesOfLastRecord);
    EXPECT_EQ(recordsIn(old).size() + recordsIn(readFile(folder / "log")).size(),
              std::size_t{errorsPerRun});
}

TEST(LoggerConfiguration, opensTheSystemLogAndSendsItBareRecords) {
    const TemporaryFolder folder;
    const Result result =
        runRoleWith({{"VRAX_LOG_LEVEL", "trace"}, {"VRAX_LOG_TYPE", "syslog"}}, "usesTheSystemLog");
    const std::string file = "|" + std::string(29, ' ') + "Source|  250|";
    EXPECT_EQ(LOG_PID | LOG_CONS | LOG_NDELAY, 11);
    EXPECT_EQ(result.output,
              "open 0 11 8\n3   ERROR" + file + "100%s\n4 WARNING" + file + "text\n");
}

TEST(LoggerConfiguration, addsASinkEveryTime) {
    const TemporaryFolder folder;
    LogSettings settings = settingsOf("text_file", folder.path(), "");
    settings.erase("VRAX_LOG_NAME");
    runRoleWith(settings, "configuresTwice");
    EXPECT_EQ(recordsIn(readFile(folder / "first")), Records{"error: text"});
    EXPECT_EQ(recordsIn(readFile(folder / "second")), Records{"error: text"});
}
