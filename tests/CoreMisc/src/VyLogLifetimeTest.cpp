// Records over the life of a process: the first one, those before and after main(), and failures.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <utility>

#include "CoreMisc/LogInterface/Logger.h"
#include "CoreMisc/src/VyLog.h"
#include "tests/CoreMisc/LogTestSupport.h"
#include "tests/CoreMisc/SystemLogRecorder.h"
#include "tests/support/Allocations.h"

using com_qel::VyLog;
using namespace vantric_test;
namespace LogInterface = com_qel::Korvel::LogInterface;

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
    StaticThatLogs& operator=(StaticThatLogs&&) = delete;
};

__attribute__((init_priority(101))) const StaticThatLogs staticThatLogs;

Result runWithStaticRecord(const std::string& moment, const LogSettings& settings) {
    const LogEnvironment environment(settings);
    return run(roleCommand(writeErrorsRole, {"in main"}, {{staticRecordsVariable, moment}}));
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
    const LogEnvironment environment(LogSettings{{"VRAX_LOG_TYPE", "inmemory"}});
    VyLog::Init();
    writeError("two");
    return 0;
});

const RoleRegistration writesAllLevels("writesAllLevels", [](const Arguments&) {
    VyLog(VyLog::Error, "f", 1, 0).stream() << "e";
    VyLog(VyLog::Warning, "f", 1, 0).stream() << "w";
    VyLog(VyLog::Info, "f", 1, 0).stream() << "i";
    VyLog(VyLog::Trace, "f", 1, 1).stream() << "t";
    return 0;
});

const RoleRegistration runsOutOfMemoryAtFirst("runsOutOfMemoryAtFirst", [](const Arguments&) {
    bool propagated = false;
    {
        const Allocations noMemory(1);
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

// Its result is the number of records that reached the system log.
const RoleRegistration logsWhileItConfigures("logsWhileItConfigures", [](const Arguments&) {
    systemLog().whileOpening = [] { writeError("inner"); };
    writeError("outer");
    return static_cast<int>(systemLog().entries.size());
});

}  // namespace

TEST(VyLogLifetime, writesNothingWithoutSettings) {
    const Result result = runRoleWith({}, "writesAllLevels");
    EXPECT_EQ(result.status.code(), 0);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "");
}

TEST(VyLogLifetime, configuresTheLoggerOnceHoweverOftenItIsInitialised) {
    const Result result = runRoleWith(consoleForAll(), "initialisesTwice");
    EXPECT_EQ(recordsIn(result.output), (Records{errorRecord("one"), errorRecord("two")}));
}

TEST(VyLogLifetime, initialisesWithoutARecordAndNamesTheFileDummy) {
    const TemporaryFolder folder;
    LogSettings settings = textFile(folder);
    settings["VRAX_LOG_LEVEL"] = "warning";
    settings.erase("VRAX_LOG_NAME");
    const Result result = runRoleWith(settings, "onlyInitialises");
    EXPECT_EQ(result.status.code(), static_cast<int>(LogInterface::SeverityWarning));
    EXPECT_EQ(readFile(folder / "dummy"), "");
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

TEST(VyLogLifetime, writesTheRecordsOfAStaticsConstructorAndDestructor) {
    const Records constructorFirst = {errorRecord(atConstruction), errorRecord("in main")};
    const Records destructorLast = {errorRecord("in main"), errorRecord(atDestruction)};
    for (const auto& [moment, expected] :
         {std::pair(atConstruction, constructorFirst), std::pair(atDestruction, destructorLast)}) {
        const TemporaryFolder folder;
        const Result toConsole = runWithStaticRecord(moment, consoleForAll());
        const Result toFile = runWithStaticRecord(moment, textFile(folder));
        EXPECT_EQ(toConsole.status.code(), 0) << toConsole.errors;
        EXPECT_EQ(toFile.status.code(), 0) << toFile.errors;
        EXPECT_EQ(recordsIn(toConsole.output), expected);
        EXPECT_EQ(recordsIn(readFile(folder / "log")), expected);
    }
}

TEST(VyLogLifetime, hasEachRecordInTheFileAsSoonAsItIsWritten) {
    const TemporaryFolder folder;
    const Result result = runRoleWith(textFile(folder), "diesAfterARecord");
    EXPECT_EQ(result.status.signal(), SIGKILL);
    EXPECT_EQ(recordsIn(readFile(folder / "log")), Records{errorRecord("last words")});
}

TEST(VyLogLifetime, passesOnAFailureToConfigureAndConfiguresWithTheNextRecord) {
    const Result result = runRoleWith(consoleForAll(), "runsOutOfMemoryAtFirst");
    EXPECT_EQ(result.status.code(), 0) << result.errors;
    EXPECT_EQ(recordsIn(result.output), Records{errorRecord("later")});
}

TEST(VyLogLifetime, endsTheProcessWhenARecordCannotBeFormatted) {
    const Result result = runRoleWith({{"VRAX_LOG_TYPE", "inmemory"}}, "failsToFormat");
    EXPECT_EQ(result.status.signal(), SIGABRT);
}

TEST(VyLogLifetime, dropsARecordThatItsOwnConfigurationCreates) {
    const Result result = runRoleWith({{"VRAX_LOG_LEVEL", "trace"}, {"VRAX_LOG_TYPE", "syslog"}},
                                      "logsWhileItConfigures");
    EXPECT_EQ(result.status.code(), 1) << result.errors;
}
