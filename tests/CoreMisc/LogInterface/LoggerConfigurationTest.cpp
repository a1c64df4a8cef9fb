// What the logger makes of the environment: which sink, on which path, at which threshold.
#include <gtest/gtest.h>
#include <syslog.h>

#include <climits>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <new>

#include "CoreMisc/LogInterface/Logger.h"
#include "CoreMisc/src/VyLog.h"
#include "tests/CoreMisc/LogTestSupport.h"
#include "tests/CoreMisc/SystemLogRecorder.h"
#include "tests/support/Allocations.h"
#include "tests/support/ProcessFacts.h"

using com_qel::VyLog;
using namespace com_qel::Korvel::LogInterface;
using namespace vantric_test;

namespace {

void configureWith(const LogSettings& settings) {
    const LogEnvironment environment(settings);
    Logger::Instance().ConfigureFromEnvironment("given name", FormatLine);
}

const RoleRegistration configuresTwice("configuresTwice", [](const Arguments&) {
    Logger& logger = Logger::Instance();
    logger.ConfigureFromEnvironment("first", FormatLine);
    logger.ConfigureFromEnvironment("second", FormatLine);
    logger.Dispatch(com_qel::Korvel::LogInterface::SeverityError, "text");
    return 0;
});

const RoleRegistration usesTheSystemLog("usesTheSystemLog", [](const Arguments&) {
    VyLog(VyLog::Error, "folder/Source", 250, 0).stream() << "100%s";
    VyLog(VyLog::Warning, "folder/Source", 250, 0).stream() << "text";
    for (const auto& opening : systemLog().openings) {
        std::printf("open %d %d %d\n", opening.hasIdentity, opening.options, opening.facility);
    }
    for (const auto& entry : systemLog().entries) {
        std::printf("%d %s\n", entry.priority, entry.text.c_str());
    }
    return 0;
});

}  // namespace

TEST(LoggerConfiguration, takesTheThresholdFromTheLevel) {
    configureWith({});
    EXPECT_EQ(Logger::Instance().Threshold(), 5U);
    for (const char* type : {"console", "inmemory"}) {
        for (const uint32_t level : {0U, 1U, 2U, 3U, 4U, 5U}) {
            configureWith({{"VRAX_LOG_LEVEL", std::to_string(level)}, {"VRAX_LOG_TYPE", type}});
            EXPECT_EQ(Logger::Instance().Threshold(), level);
        }
    }
}

TEST(LoggerConfiguration, addsTheSinkOfTheType) {
    const struct {
        LogSettings settings;
        Names files;
        std::size_t recordsOnTheConsole;
    } rows[] = {
        {{}, {}, 2},
        {{{"VRAX_LOG_TYPE", "console"}}, {}, 2},
        {{{"VRAX_LOG_TYPE", "9"}}, {}, 2},
        {{{"VRAX_LOG_TYPE", ""}}, {"dummy"}, 0},
        {{{"VRAX_LOG_TYPE", "text_file"}}, {"dummy"}, 0},
        {{{"VRAX_LOG_TYPE", "rolling_text_file"}}, {"dummy", "dummy.old"}, 0},
        {{{"VRAX_LOG_TYPE", "inmemory"}}, {}, 0},
        {{{"VRAX_LOG_TYPE", "syslog"}}, {}, 0},
    };
    const std::filesystem::path before = std::filesystem::current_path();
    for (const auto& [settings, files, recordsOnTheConsole] : rows) {
        const TemporaryFolder folder;
        std::filesystem::current_path(folder.path());
        LogSettings all = settings;
        all["VRAX_LOG_LEVEL"] = "error";
        all["VRAX_LOG_SIZE"] = "0";
        const Result result = runRoleWith(all, writeErrorsRole, {"text", "text"});
        EXPECT_EQ(result.status.code(), 0);
        EXPECT_EQ(result.errors, "");
        EXPECT_EQ(recordsIn(result.output), Records(recordsOnTheConsole, errorRecord("text")));
        EXPECT_EQ(namesIn(folder.path()), files);
        for (const std::string& file : files) {
            const std::size_t records = files.size() == 2 ? 1 : 2;
            EXPECT_EQ(recordsIn(readFile(folder / file)), Records(records, errorRecord("text")));
        }
    }
    std::filesystem::current_path(before);
}

// A null pointer stands for a variable that is not set or for no file.
TEST(LoggerConfiguration, joinsRootAndNameToThePathOfTheFile) {
    const TemporaryFolder elsewhere;
    const std::string absolute = elsewhere / "log";
    const struct {
        const char* root;
        const char* name;
        const char* file;
    } rows[] = {
        {nullptr, nullptr, "given name"},
        {"", nullptr, "given name"},
        {"./", nullptr, "given name"},
        {"sub", nullptr, "sub/given name"},
        {"sub/", "log", "sub/log"},
        {"sub//", "log", "sub/log"},
        {"sub/..", "log", "log"},
        {nullptr, "100%s", "100%s"},
        {nullptr, "sub/a\nb", "sub/a\nb"},
        {"sub", "../log", "log"},
        {"sub", absolute.c_str(), absolute.c_str()},
        {"missing", absolute.c_str(), absolute.c_str()},
        {"missing", "log", nullptr},
        {"~", "log", nullptr},
        {"SUB", "log", nullptr},
        {nullptr, "", nullptr},
        {nullptr, "sub", nullptr},
        {nullptr, "missing/log", nullptr},
    };
    const std::filesystem::path before = std::filesystem::current_path();
    for (const auto& [root, name, file] : rows) {
        const TemporaryFolder folder;
        std::filesystem::create_directory(folder / "sub");
        std::filesystem::current_path(folder.path());
        LogSettings settings = {{"VRAX_LOG_TYPE", "text_file"}};
        if (root != nullptr) {
            settings["VRAX_LOG_ROOT"] = root;
        }
        if (name != nullptr) {
            settings["VRAX_LOG_NAME"] = name;
        }
        configureWith(settings);
        if (file != nullptr) {
            EXPECT_TRUE(std::filesystem::remove(file)) << file;
        }
        EXPECT_TRUE(std::filesystem::is_empty("sub"));
        EXPECT_EQ(namesIn(folder.path()), Names{"sub"});
        EXPECT_EQ(namesIn(elsewhere.path()), Names());
    }
    std::filesystem::current_path(before);
}

// A doubled slash names the same file; only the longest possible path has no room for it.
TEST(LoggerConfiguration, doesNotDoubleASlashAtTheEndOfTheRoot) {
    const TemporaryFolder folder;
    const std::string name = "log";
    std::string root = folder.path();
    root.append(PATH_MAX - 1 - root.size() - name.size(), '/');
    configureWith(
        {{"VRAX_LOG_TYPE", "text_file"}, {"VRAX_LOG_ROOT", root}, {"VRAX_LOG_NAME", name}});
    EXPECT_EQ(namesIn(folder.path()), Names{name});
}

TEST(LoggerConfiguration, rollsAFileOfMoreThanFiveThousandBytesByDefault) {
    const TemporaryFolder folder;
    const LogSettings settings = {{"VRAX_LOG_LEVEL", "error"},
                                  {"VRAX_LOG_TYPE", "rolling_text_file"},
                                  {"VRAX_LOG_ROOT", folder.path()}};
    const std::size_t lineSize = std::string("[Thu Jan  1 00:00:00 1970\n] <error>: ").size() +
                                 errorRecord("").size() - std::string("error: ").size() + 1;
    const std::string fills = std::string(5000 - lineSize, 'x');
    runRoleWith(settings, writeErrorsRole, {fills, "next"});
    EXPECT_EQ(namesIn(folder.path()), Names{"dummy"});
    runRoleWith(settings, writeErrorsRole, {fills + "x", "next"});
    EXPECT_EQ(recordsIn(readFile(folder / "dummy.old")), Records{errorRecord(fills + "x")});
    EXPECT_EQ(recordsIn(readFile(folder / "dummy")), Records{errorRecord("next")});
}

// The memory itself is left to the leak checker.
TEST(LoggerConfiguration, leavesNothingOpenOrChangedWheneverMemoryRunsOut) {
    const TemporaryFolder folder;
    const auto configureFile = [&] {
        Logger::Instance().ConfigureFile("log", folder.path(), 0, FormatLine);
    };
    const auto configureFromEnvironment = [] {
        Logger::Instance().ConfigureFromEnvironment("log", FormatLine);
    };
    const struct {
        const char* type;
        std::function<void()> configure;
        std::size_t files;
    } rows[] = {
        {"unused", configureFile, 1},
        {"text_file", configureFromEnvironment, 1},
        {"rolling_text_file", configureFromEnvironment, 1},
        {"console", configureFromEnvironment, 0},
        {"syslog", configureFromEnvironment, 0},
    };
    for (const auto& [type, configure, files] : rows) {
        configureWith({{"VRAX_LOG_TYPE", "inmemory"}});
        const LogEnvironment environment({{"VRAX_LOG_LEVEL", "trace"},
                                          {"VRAX_LOG_TYPE", type},
                                          {"VRAX_LOG_ROOT", folder.path()}});
        const std::size_t filesBefore = openDescriptorCount();
        std::size_t failing = 0;
        for (bool isConfigured = false; !isConfigured;) {
            EXPECT_EQ(openDescriptorCount(), filesBefore) << type;
            EXPECT_EQ(Logger::Instance().Threshold(), 5U) << type;
            const Allocations allocations(++failing);
            try {
                configure();
                isConfigured = true;
            } catch (const std::bad_alloc&) {
                continue;
            }
        }
        EXPECT_GT(failing, 1U) << type;
        EXPECT_EQ(openDescriptorCount(), filesBefore + files) << type;
    }
}

TEST(LoggerConfiguration, opensTheSystemLogAndSendsItBareRecords) {
    const Result result =
        runRoleWith({{"VRAX_LOG_LEVEL", "trace"}, {"VRAX_LOG_TYPE", "syslog"}}, "usesTheSystemLog");
    const std::string file = "|" + std::string(29, ' ') + "Source|  250|";
    EXPECT_EQ(LOG_PID | LOG_CONS | LOG_NDELAY, 11);
    EXPECT_EQ(result.output,
              "open 0 11 8\n3   ERROR" + file + "100%s\n4 WARNING" + file + "text\n");
}

TEST(LoggerConfiguration, addsASinkEveryTime) {
    const TemporaryFolder folder;
    runRoleWith({{"VRAX_LOG_TYPE", "text_file"}, {"VRAX_LOG_ROOT", folder.path()}},
                "configuresTwice");
    EXPECT_EQ(recordsIn(readFile(folder / "first")), Records{"error: text"});
    EXPECT_EQ(recordsIn(readFile(folder / "second")), Records{"error: text"});
}
