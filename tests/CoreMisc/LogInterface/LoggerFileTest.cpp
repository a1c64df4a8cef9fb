// Logger::ConfigureFile: a log file, or the console, that the program itself asks for.
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <limits>
#include <stdexcept>

#include "CoreMisc/LogInterface/Logger.h"
#include "CoreMisc/src/VyLog.h"
#include "tests/CoreMisc/LogTestSupport.h"

using com_qel::VyLog;
using namespace com_qel::Korvel::LogInterface;
using namespace vantric_test;

namespace {

// The cases work in a folder of their own.
class LoggerFile : public testing::Test {
  protected:
    LoggerFile() { std::filesystem::current_path(folder_.path()); }
    ~LoggerFile() override { std::filesystem::current_path("/"); }

    const TemporaryFolder& folder() const { return folder_; }

    // What the configuration threw, or nothing.
    static std::string configure(const std::string& name, const std::string& directory,
                                 int level = 0) {
        try {
            Logger::Instance().ConfigureFile(name, directory, level, FormatLine);
        } catch (const std::filesystem::filesystem_error& error) {
            return "filesystem_error " + std::to_string(error.code().value()) + " " +
                   error.path1().string();
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "";
    }

  private:
    TemporaryFolder folder_;
};

const RoleRegistration configuresTheConsole("configuresTheConsole", [](const Arguments&) {
    Logger::Instance().ConfigureFile("missing/name", "*", 2, FormatLine);
    Logger::Instance().Dispatch(SeverityError, "text");
    return static_cast<int>(Logger::Instance().Threshold());
});

const RoleRegistration configuresBesideTheEnvironment(
    "configuresBesideTheEnvironment", [](const Arguments& arguments) {
        VyLog::Init();
        Logger::Instance().ConfigureFile("log", arguments.at(0), 0, FormatLine);
        VyLog(VyLog::Error, "folder/Source", 250, 0).stream() << "text";
        return 0;
    });

}  // namespace

TEST_F(LoggerFile, emptiesTheFileAndWritesToIt) {
    writeFile("name.log", "from an earlier process\n");
    EXPECT_EQ(configure("name", folder().path()), "");
    Logger::Instance().Dispatch(SeverityError, "text");
    EXPECT_EQ(recordsIn(readFile("name.log")), Records{"error: text"});
}

TEST_F(LoggerFile, joinsDirectoryAndNameAndAddsItsExtension) {
    const TemporaryFolder elsewhere;
    std::filesystem::create_directory("sub");
    std::filesystem::create_directory("**");
    const struct {
        std::string directory;
        std::string name;
        std::string file;
    } rows[] = {
        {"sub", "name", "sub/name.log"},
        {"sub/", "name.txt", "sub/name.txt.log"},
        {".", "", ".log"},
        {"**", "name", "**/name.log"},
        {"sub", elsewhere / "name", elsewhere / "name.log"},
    };
    for (const auto& [directory, name, file] : rows) {
        EXPECT_EQ(configure(name, directory), "");
        EXPECT_TRUE(std::filesystem::remove(file)) << file;
    }
    EXPECT_EQ(namesIn(folder().path()), (Names{"**", "sub"}));
}

TEST_F(LoggerFile, takesTheThresholdFromALevelInRangeAndErrorForAnyOther) {
    for (const int level : {0, 1, 2, 3, 4, 5}) {
        EXPECT_EQ(configure("name", ".", level), "");
        EXPECT_EQ(static_cast<int>(Logger::Instance().Threshold()), level);
    }
    for (const int level : {-1, 6, std::numeric_limits<int>::min(), 256}) {
        EXPECT_EQ(configure("name", ".", level), "");
        EXPECT_EQ(Logger::Instance().Threshold(), SeverityError) << level;
    }
}

TEST_F(LoggerFile, writesToTheConsoleForAStarAndLeavesTheFileSystemAlone) {
    const Result result = runRoleWith({}, "configuresTheConsole");
    EXPECT_EQ(recordsIn(result.output), Records{"error: text"});
    EXPECT_EQ(result.status.code(), 2);
    EXPECT_EQ(namesIn(folder().path()), Names());
}

TEST_F(LoggerFile, refusesAParentThatDoesNotExistAndChangesNothing) {
    writeFile("file", "");
    const std::string refusal = "Cannot create log file: Path is invalid ";
    EXPECT_EQ(configure("name", "missing"), refusal + "missing");
    EXPECT_EQ(configure("missing/name", "."), refusal + "./missing");
    EXPECT_EQ(configure("name", "file/below"), refusal + "file/below");
    EXPECT_EQ(configure("name", ""), refusal);
    Logger::Instance().Dispatch(SeverityError, "text");
    EXPECT_EQ(Logger::Instance().Threshold(), SeverityFatal);
    EXPECT_EQ(namesIn(folder().path()), Names{"file"});
}

TEST_F(LoggerFile, passesOnThatTheParentCannotBeExamined) {
    std::filesystem::create_symlink("link", "link");
    EXPECT_EQ(configure("name", "link"), "filesystem_error " + std::to_string(ELOOP) + " link");
    EXPECT_EQ(Logger::Instance().Threshold(), SeverityFatal);
}

TEST_F(LoggerFile, losesEveryLineWhenTheParentIsNoFolder) {
    writeFile("file", "content");
    EXPECT_EQ(configure("name", "file", 3), "");
    Logger::Instance().Dispatch(SeverityError, "text");
    EXPECT_EQ(Logger::Instance().Threshold(), 3U);
    EXPECT_EQ(readFile("file"), "content");
}

TEST_F(LoggerFile, writesBesideTheSinkOfTheEnvironment) {
    const Result result = runRoleWith({{"VRAX_LOG_LEVEL", "fatal"}},
                                      "configuresBesideTheEnvironment", {folder().path()});
    EXPECT_EQ(recordsIn(result.output), Records{errorRecord("text")});
    EXPECT_EQ(recordsIn(readFile("log.log")), Records{errorRecord("text")});
}
