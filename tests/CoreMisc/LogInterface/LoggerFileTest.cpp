// Logger::ConfigureFile: a log file, or the console, asked for by the program itself.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <stdexcept>

#include "CoreMisc/LogInterface/Logger.h"
#include "CoreMisc/src/VyLog.h"
#include "tests/CoreMisc/LogTestSupport.h"
#include "tests/support/Privileges.h"

using com_qel::VyLog;
using com_qel::Korvel::LogInterface::FormatLine;
using com_qel::Korvel::LogInterface::Logger;
using com_qel::Korvel::LogInterface::SeverityError;
using vantric_test::namesIn;
using vantric_test::readFile;
using vantric_test::recordsIn;
using vantric_test::Result;
using vantric_test::RoleRegistration;
using vantric_test::runRoleWith;
using vantric_test::TemporaryFolder;
using vantric_test::writeFile;
using Arguments = std::vector<std::string>;
using Records = std::vector<std::string>;
using Names = std::vector<std::string>;

namespace {

// Configures the file `name` in `directory` at `level`, then dispatches an error. Exits with the
// threshold; shows what was thrown on standard output.
int configureAndDispatch(const std::string& name, const std::string& directory, int level) {
    Logger& logger = Logger::Instance();
    try {
        logger.ConfigureFile(name, directory, level, FormatLine);
    } catch (const std::filesystem::filesystem_error& error) {
        std::printf("filesystem_error %d %s\n", error.code().value(), error.path1().c_str());
    } catch (const std::runtime_error& error) {
        std::printf("runtime_error %s\n", error.what());
    }
    logger.Dispatch(SeverityError, "text");
    return static_cast<int>(logger.Threshold());
}

const RoleRegistration configuresAFile("configuresAFile", [](const Arguments& arguments) {
    return configureAndDispatch(arguments.at(0), arguments.at(1), std::stoi(arguments.at(2)));
});

const RoleRegistration configuresAFileWithoutRights("configuresAFileWithoutRights",
                                                    [](const Arguments& arguments) {
                                                        if (!vantric_test::obeyFileModes()) {
                                                            return -1;
                                                        }
                                                        return configureAndDispatch(
                                                            arguments.at(0), arguments.at(1), 0);
                                                    });

const RoleRegistration configuresInAFolder("configuresInAFolder", [](const Arguments& arguments) {
    std::filesystem::current_path(arguments.at(0));
    return configureAndDispatch(arguments.at(1), arguments.at(2), 0);
});

const RoleRegistration configuresBesideTheEnvironment(
    "configuresBesideTheEnvironment", [](const Arguments& arguments) {
        VyLog::Init();
        Logger::Instance().ConfigureFile("log", arguments.at(0), 0, FormatLine);
        VyLog(VyLog::Error, "folder/Source", 250, 0).stream() << "text";
        return 0;
    });

Result configure(const std::string& name, const std::string& directory, int level = 0) {
    return runRoleWith({}, "configuresAFile", {name, directory, std::to_string(level)});
}

constexpr int thresholdWithoutConfiguration = 5;

}  // namespace

TEST(LoggerFile, emptiesTheFileAndWritesToIt) {
    const TemporaryFolder folder;
    writeFile(folder / "name.log", "from an earlier process\n");
    const Result result = configure("name", folder.path());
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(recordsIn(readFile(folder / "name.log")), Records{"error: text"});
}

TEST(LoggerFile, addsItsExtensionToAnyName) {
    const TemporaryFolder folder;
    configure("name.txt", folder.path());
    configure("", folder.path());
    EXPECT_EQ(namesIn(folder.path()), (Names{".log", "name.txt.log"}));
}

TEST(LoggerFile, doesNotDoubleASlashAtTheEndOfTheDirectory) {
    const TemporaryFolder folder;
    configure("name", folder / "");
    EXPECT_EQ(namesIn(folder.path()), Names{"name.log"});
}

TEST(LoggerFile, ignoresTheDirectoryForAnAbsoluteName) {
    const TemporaryFolder folder;
    const TemporaryFolder directory;
    configure(folder / "name", directory.path());
    EXPECT_EQ(namesIn(folder.path()), Names{"name.log"});
    EXPECT_EQ(namesIn(directory.path()), Names());
}

TEST(LoggerFile, takesALevelFromTraceToFatalForTheThreshold) {
    const TemporaryFolder folder;
    for (const int level : {0, 1, 2, 3, 4, 5}) {
        EXPECT_EQ(configure("name", folder.path(), level).status->code(), level);
    }
}

TEST(LoggerFile, takesTheErrorThresholdForAnyOtherLevel) {
    const TemporaryFolder folder;
    for (const int level : {-1, 6, std::numeric_limits<int>::min(), 256}) {
        EXPECT_EQ(configure("name", folder.path(), level).status->code(), 4) << level;
    }
}

TEST(LoggerFile, takesTheLevelForTheConsoleToo) {
    EXPECT_EQ(configure("name", "*", 2).status->code(), 2);
    EXPECT_EQ(configure("name", "*", 6).status->code(), 4);
}

TEST(LoggerFile, writesToTheConsoleForAStar) {
    EXPECT_EQ(recordsIn(configure("name", "*").output), Records{"error: text"});
}

TEST(LoggerFile, leavesTheFileSystemAloneForAStar) {
    const TemporaryFolder folder;
    const Result result =
        runRoleWith({}, "configuresInAFolder", {folder.path(), "missing/name", "*"});
    EXPECT_EQ(recordsIn(result.output), Records{"error: text"});
    EXPECT_EQ(namesIn(folder.path()), Names());
}

TEST(LoggerFile, takesAStarForTheConsoleOnlyWhenItStandsAlone) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "**");
    const Result result = runRoleWith({}, "configuresInAFolder", {folder.path(), "name", "**"});
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(namesIn(folder / "**"), Names{"name.log"});
}

TEST(LoggerFile, refusesAMissingParentAndChangesNothing) {
    const TemporaryFolder folder;
    const Result result = configure("name", folder / "missing");
    EXPECT_EQ(result.output, "runtime_error Cannot create log file: Path is invalid " +
                                 (folder / "missing") + "\n");
    EXPECT_EQ(result.status->code(), thresholdWithoutConfiguration);
    EXPECT_EQ(namesIn(folder.path()), Names());
}

TEST(LoggerFile, looksForTheParentOfTheWholePath) {
    const TemporaryFolder folder;
    const Result result = configure("missing/name", folder.path());
    EXPECT_EQ(result.output, "runtime_error Cannot create log file: Path is invalid " +
                                 (folder / "missing") + "\n");
}

TEST(LoggerFile, refusesAnEmptyParent) {
    const TemporaryFolder folder;
    const Result result = runRoleWith({}, "configuresInAFolder", {folder.path(), "name", ""});
    EXPECT_EQ(result.output, "runtime_error Cannot create log file: Path is invalid \n");
    EXPECT_EQ(namesIn(folder.path()), Names());
}

TEST(LoggerFile, refusesAParentBelowAFile) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    const Result result = configure("name", folder / "file/below");
    EXPECT_EQ(result.output, "runtime_error Cannot create log file: Path is invalid " +
                                 (folder / "file/below") + "\n");
}

TEST(LoggerFile, losesEveryLineWhenTheParentIsNoFolder) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "content");
    const Result result = configure("name", folder / "file", 3);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.status->code(), 3);
    EXPECT_EQ(readFile(folder / "file"), "content");
}

TEST(LoggerFile, passesOnThatTheParentCannotBeReached) {
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder / "closed/inner");
    ASSERT_EQ(chmod((folder / "closed").c_str(), 0), 0);
    const Result result =
        runRoleWith({}, "configuresAFileWithoutRights", {"name", folder / "closed/inner"});
    ASSERT_EQ(chmod((folder / "closed").c_str(), S_IRWXU), 0);
    EXPECT_EQ(result.output, "filesystem_error " + std::to_string(EACCES) + " " +
                                 (folder / "closed/inner") + "\n");
    EXPECT_EQ(result.status->code(), thresholdWithoutConfiguration);
    EXPECT_EQ(namesIn(folder / "closed/inner"), Names());
}

TEST(LoggerFile, passesOnThatTheParentIsALinkToItself) {
    const TemporaryFolder folder;
    std::filesystem::create_symlink("link", folder / "link");
    const Result result = configure("name", folder / "link");
    EXPECT_EQ(result.output,
              "filesystem_error " + std::to_string(ELOOP) + " " + (folder / "link") + "\n");
    EXPECT_EQ(result.status->code(), thresholdWithoutConfiguration);
}

TEST(LoggerFile, writesBesideTheSinkOfTheEnvironment) {
    const TemporaryFolder folder;
    const Result result = runRoleWith({{"VRAX_LOG_LEVEL", "fatal"}},
                                      "configuresBesideTheEnvironment", {folder.path()});
    EXPECT_EQ(recordsIn(result.output), Records{vantric_test::errorRecord("text")});
    EXPECT_EQ(recordsIn(readFile(folder / "log.log")), Records{vantric_test::errorRecord("text")});
}
