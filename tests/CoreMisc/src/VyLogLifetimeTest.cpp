// Records over the life of a process: the first one, those before and after main(), and failures.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <thread>

#include "CoreMisc/LogInterface/Logger.h"
#include "CoreMisc/src/VyLog.h"
#include "tests/CoreMisc/LogTestSupport.h"
#include "tests/support/Allocations.h"

using com_qel::VyLog;
using vantric_test::errorRecord;
using vantric_test::LogSettings;
using vantric_test::readFile;
using vantric_test::recordsIn;
using vantric_test::Result;
using vantric_test::RoleRegistration;
using vantric_test::runRoleWith;
using vantric_test::TemporaryFolder;
using vantric_test::writeErrorsRole;
namespace LogInterface = com_qel::Korvel::LogInterface;
using Arguments = std::vector<std::string>;
using Records = std::vector<std::string>;

namespace {

// Which of the two moments a static of this program writes a record at.
constexpr const char* staticRecordsVariable = "VANTRIC_TEST_STATIC_RECORDS";
constexpr const char* atConstruction = "at construction";
constexpr const char* atDestruction = "at destruction";

void writeError(const std::string& message) {
    VyLog(VyLog::Error, "folder/Source", 250, 0).stream() << message;
}

bool writesStaticRecord(const std::string& moment) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): there is no other thread outside main()
    const char* chosen = std::getenv(staticRecordsVariable);
    return chosen != nullptr && chosen == moment;
}

// The first static of the program to be constructed and the last one to be destroyed.
class StaticThatLogs {
  public:
    StaticThatLogs() {
        if (writesStaticRecord(atConstruction)) {
            writeError(atConstruction);
        }
    }
    ~StaticThatLogs() {
        if (writesStaticRecord(atDestruction)) {
            writeError(atDestruction);
        }
    }
    StaticThatLogs(const StaticThatLogs&) = delete;
    StaticThatLogs& operator=(const StaticThatLogs&) = delete;
};

__attribute__((init_priority(101))) const StaticThatLogs staticThatLogs;

Result runWithStaticRecord(const std::string& moment, const LogSettings& settings) {
    const vantric_test::LogEnvironment environment(settings);
    return vantric_test::run(
        vantric_test::roleCommand(writeErrorsRole, {"in main"}, {{staticRecordsVariable, moment}}));
}

LogSettings textFile(const TemporaryFolder& folder) {
    return {{"VRAX_LOG_LEVEL", "trace"},
            {"VRAX_LOG_TYPE", "text_file"},
            {"VRAX_LOG_ROOT", folder.path()},
            {"VRAX_LOG_NAME", "log"}};
}

LogSettings consoleForAll() {
    return {{"VRAX_LOG_LEVEL", "trace"}, {"VRAX_LOG_TYPE", "console"}};
}

const RoleRegistration initialisesTwice("initialisesTwice", [](const Arguments&) {
    VyLog::Init();
    VyLog::Init();
    writeError("one");
    VyLog::Init();
    writeError("two");
    return 0;
});

const RoleRegistration onlyInitialises("onlyInitialises", [](const Arguments&) {
    VyLog::Init();
    return static_cast<int>(LogInterface::Logger::Instance().Threshold());
});

const RoleRegistration changesTheEnvironment("changesTheEnvironment", [](const Arguments&) {
    writeError("one");
    const vantric_test::LogEnvironment environment(LogSettings{{"VRAX_LOG_TYPE", "inmemory"}});
    VyLog::Init();
    writeError("two");
    return 0;
});

const RoleRegistration writesAllLevels("writesAllLevels", [](const Arguments&) {
    VyLog(VyLog::Error, "f", 1, 0).stream() << "e";
    VyLog(VyLog::Warning, "f", 1, 0).stream() << "w";
    VyLog(VyLog::Info, "f", 1, 0).stream() << "i";
    VyLog(VyLog::Trace, "f", 1, 1).stream() << "t";
    VyLog(static_cast<VyLog::Level>(99), "f", 1, 0).stream() << "u";
    return 0;
});

const RoleRegistration runsOutOfMemoryAtFirst("runsOutOfMemoryAtFirst", [](const Arguments&) {
    bool propagated = false;
    {
        const vantric_test::Allocations noMemory(1);
        try {
            const VyLog record(VyLog::Error, "f", 1, 0);
        } catch (const std::bad_alloc&) {
            propagated = true;
        }
    }
    writeError("later");
    return propagated ? 0 : 1;
});

const RoleRegistration failsToFormat("failsToFormat", [](const Arguments&) {
    VyLog::Init();
    LogInterface::Logger::Instance().ConfigureFile(
        "unused", "*", 0,
        [](const char*, const char*) -> const char* { throw std::runtime_error("no line"); });
    try {
        writeError("text");
    } catch (const std::exception&) {
        return 1;
    }
    return 2;
});

const RoleRegistration diesAfterARecord("diesAfterARecord", [](const Arguments&) {
    writeError("last words");
    std::raise(SIGKILL);
    return 0;
});

constexpr int threadCount = 4;
constexpr int recordsPerThread = 200;

const RoleRegistration logsFromThreads("logsFromThreads", [](const Arguments&) {
    VyLog::Init();
    std::vector<std::thread> threads;
    threads.reserve(threadCount);
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([] {
            for (int record = 0; record < recordsPerThread; ++record) {
                writeError("from a thread");
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    return 0;
});

}  // namespace

TEST(VyLogLifetime, writesNothingWithoutSettings) {
    const Result result = runRoleWith({}, "writesAllLevels");
    EXPECT_EQ(result.status->code(), 0);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "");
}

TEST(VyLogLifetime, configuresTheLoggerWithTheFirstRecord) {
    const Result result = runRoleWith({{"VRAX_LOG_LEVEL", "error"}}, writeErrorsRole, {"text"});
    EXPECT_EQ(recordsIn(result.output), Records{errorRecord("text")});
}

TEST(VyLogLifetime, configuresTheLoggerOnceHoweverOftenItIsInitialised) {
    const Result result = runRoleWith(consoleForAll(), "initialisesTwice");
    EXPECT_EQ(recordsIn(result.output), (Records{errorRecord("one"), errorRecord("two")}));
}

TEST(VyLogLifetime, initialisesWithoutARecord) {
    const TemporaryFolder folder;
    LogSettings settings = textFile(folder);
    settings["VRAX_LOG_LEVEL"] = "warning";
    const Result result = runRoleWith(settings, "onlyInitialises");
    EXPECT_EQ(result.status->code(), static_cast<int>(LogInterface::SeverityWarning));
    EXPECT_EQ(readFile(folder / "log"), "");
}

TEST(VyLogLifetime, namesTheLogFileDummyUnlessTheEnvironmentNamesIt) {
    const TemporaryFolder folder;
    LogSettings settings = textFile(folder);
    settings.erase("VRAX_LOG_NAME");
    runRoleWith(settings, writeErrorsRole, {"text"});
    EXPECT_EQ(vantric_test::namesIn(folder.path()), Records{"dummy"});
    EXPECT_EQ(recordsIn(readFile(folder / "dummy")), Records{errorRecord("text")});
}

TEST(VyLogLifetime, namesTheLogFileDummyWhenOnlyInitialised) {
    const TemporaryFolder folder;
    LogSettings settings = textFile(folder);
    settings.erase("VRAX_LOG_NAME");
    runRoleWith(settings, "onlyInitialises");
    EXPECT_EQ(vantric_test::namesIn(folder.path()), Records{"dummy"});
}

TEST(VyLogLifetime, ignoresChangesOfTheEnvironmentAfterTheFirstRecord) {
    const Result result = runRoleWith(consoleForAll(), "changesTheEnvironment");
    EXPECT_EQ(recordsIn(result.output), (Records{errorRecord("one"), errorRecord("two")}));
}

TEST(VyLogLifetime, writesARecordAsTwoLinesOfAFile) {
    const TemporaryFolder folder;
    runRoleWith(textFile(folder), writeErrorsRole, {"text"});
    const std::string content = readFile(folder / "log");
    EXPECT_EQ(std::count(content.begin(), content.end(), '\n'), 2);
    EXPECT_EQ(content.front(), '[');
    EXPECT_EQ(content.find('\n'), 25U);
    EXPECT_EQ(content.substr(26),
              "] <error>:   ERROR|                             Source|  250|text\n");
}

TEST(VyLogLifetime, writesEveryLevelAtTheTraceThreshold) {
    const std::string file = std::string(34, ' ') + "f|    1|";
    const Result result = runRoleWith(consoleForAll(), "writesAllLevels");
    EXPECT_EQ(recordsIn(result.output),
              (Records{"error:   ERROR|" + file + "e", "warning: WARNING|" + file + "w",
                       "info:    INFO|" + file + "i",
                       "trace:   TRACE|" + file + "TRACE:0x0000000000000001|t",
                       "trace: UNKNOWN|" + file + "u"}));
}

TEST(VyLogLifetime, writesTheRecordOfAStaticsConstructorToTheConsole) {
    const Result result = runWithStaticRecord(atConstruction, consoleForAll());
    EXPECT_EQ(result.status->code(), 0) << result.errors;
    EXPECT_EQ(recordsIn(result.output),
              (Records{errorRecord(atConstruction), errorRecord("in main")}));
}

TEST(VyLogLifetime, writesTheRecordOfAStaticsConstructorToAFile) {
    const TemporaryFolder folder;
    const Result result = runWithStaticRecord(atConstruction, textFile(folder));
    EXPECT_EQ(result.status->code(), 0) << result.errors;
    EXPECT_EQ(recordsIn(readFile(folder / "log")),
              (Records{errorRecord(atConstruction), errorRecord("in main")}));
}

TEST(VyLogLifetime, writesTheRecordOfAStaticsDestructorToTheConsole) {
    const Result result = runWithStaticRecord(atDestruction, consoleForAll());
    EXPECT_EQ(result.status->code(), 0) << result.errors;
    EXPECT_EQ(recordsIn(result.output),
              (Records{errorRecord("in main"), errorRecord(atDestruction)}));
}

TEST(VyLogLifetime, writesTheRecordOfAStaticsDestructorToAFile) {
    const TemporaryFolder folder;
    const Result result = runWithStaticRecord(atDestruction, textFile(folder));
    EXPECT_EQ(result.status->code(), 0) << result.errors;
    EXPECT_EQ(recordsIn(readFile(folder / "log")),
              (Records{errorRecord("in main"), errorRecord(atDestruction)}));
}

TEST(VyLogLifetime, hasEachRecordInTheFileAsSoonAsItIsWritten) {
    const TemporaryFolder folder;
    const Result result = runRoleWith(textFile(folder), "diesAfterARecord");
    EXPECT_EQ(result.status->signal(), SIGKILL);
    EXPECT_EQ(recordsIn(readFile(folder / "log")), Records{errorRecord("last words")});
}

TEST(VyLogLifetime, passesOnAFailureToConfigureAndConfiguresWithTheNextRecord) {
    const Result result = runRoleWith(consoleForAll(), "runsOutOfMemoryAtFirst");
    EXPECT_EQ(result.status->code(), 0) << result.errors;
    EXPECT_EQ(recordsIn(result.output), Records{errorRecord("later")});
}

TEST(VyLogLifetime, endsTheProcessWhenARecordCannotBeFormatted) {
    const Result result = runRoleWith({{"VRAX_LOG_TYPE", "inmemory"}}, "failsToFormat");
    EXPECT_EQ(result.status->signal(), SIGABRT);
}

TEST(VyLogLifetime, keepsTheLinesOfThreadsWhole) {
    const TemporaryFolder folder;
    const Result result = runRoleWith(textFile(folder), "logsFromThreads");
    EXPECT_EQ(result.status->code(), 0) << result.errors;
    EXPECT_EQ(recordsIn(readFile(folder / "log")),
              Records(std::size_t{threadCount} * recordsPerThread, errorRecord("from a thread")));
}
