// Records of several threads at once.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "CoreMisc/LogInterface/Logger.h"
#include "CoreMisc/src/VyLog.h"
#include "tests/CoreMisc/LogTestSupport.h"
#include "tests/support/ProcessFacts.h"
#include "tests/threads/ThreadGroup.h"

using com_qel::VyLog;
using namespace vantric_test;

namespace {

constexpr int threadCount = 8;
constexpr int recordsPerThread = 250;

LogSettings textFile(const std::string& path) {
    return {{"VRAX_LOG_LEVEL", "trace"}, {"VRAX_LOG_TYPE", "text_file"}, {"VRAX_LOG_NAME", path}};
}

VyLog errorRecordOfThisTest() {
    return VyLog(VyLog::Error, "folder/Source", 250, 0);
}

std::string message(int thread, int record) {
    return std::to_string(thread) + " wrote " + std::to_string(record);
}

// Appended and streamed records in turn; the first of them configures the logger.
void writeRecords(int thread) {
    for (int record = 0; record < recordsPerThread; record += 2) {
        errorRecordOfThisTest().append(thread).append(" wrote ").append(record);
        errorRecordOfThisTest().stream() << thread << " wrote " << record + 1;
    }
}

const RoleRegistration logsFromThreadsToTwoSinks("logsFromThreadsToTwoSinks",
                                                 [](const Arguments& arguments) {
                                                     namespace LogInterface =
                                                         com_qel::Korvel::LogInterface;
                                                     VyLog::Init();
                                                     LogInterface::Logger::Instance().ConfigureFile(
                                                         "second", arguments.at(0), 0,
                                                         LogInterface::FormatLine);
                                                     inThreads(threadCount, writeRecords);
                                                     return 0;
                                                 });

// The text file is a FIFO: the configuration waits until this process reads it.
const RoleRegistration racesForTheFirstRecord(
    "racesForTheFirstRecord", [](const Arguments& arguments) {
        std::vector<std::unique_ptr<BackgroundAction>> threads;
        bool allBlocked = true;
        for (int thread = 0; thread < threadCount; ++thread) {
            threads.push_back(std::make_unique<BackgroundAction>(
                [thread] { errorRecordOfThisTest().append(message(thread, 0)); }));
            allBlocked = threads.back()->blocks() && allBlocked;
        }
        const int reader = open(arguments.at(0).c_str(), O_RDONLY | O_CLOEXEC);
        threads.clear();
        std::string content(65536, '\0');
        const ssize_t size = read(reader, content.data(), content.size());
        close(reader);
        std::printf("%.*s", static_cast<int>(size), content.data());
        return allBlocked ? 0 : 1;
    });

// The second record comes after the destructors of the thread's thread_local objects, which the
// first one has used.
const RoleRegistration logsAtTheEndOfAThread("logsAtTheEndOfAThread", [](const Arguments&) {
    pthread_key_t key = {};
    pthread_key_create(&key, [](void*) { errorRecordOfThisTest().append(message(0, 1)); });
    std::thread([key] {
        errorRecordOfThisTest().append(message(0, 0));
        pthread_setspecific(key, "a value");
    }).join();
    return 0;
});

// The records of each thread by themselves, in the order of the file.
void expectTheRecordsOfAllThreads(const std::string& path) {
    const Records records = recordsIn(readFile(path));
    EXPECT_EQ(records.size(), std::size_t{threadCount} * recordsPerThread);
    for (int thread = 0; thread < threadCount; ++thread) {
        Records expected;
        for (int record = 0; record < recordsPerThread; ++record) {
            expected.push_back(errorRecord(message(thread, record)));
        }
        const std::string begin = errorRecord(std::to_string(thread) + " ");
        Records written;
        std::copy_if(records.begin(), records.end(), std::back_inserter(written),
                     [&](const std::string& record) { return record.rfind(begin, 0) == 0; });
        EXPECT_EQ(written, expected) << path;
    }
}

}  // namespace

TEST(LogThreads, leaveTheConfigurationToOneOfThemAndWaitForIt) {
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo((folder / "log").c_str(), S_IRUSR | S_IWUSR), 0);
    const Result result =
        runRoleWith(textFile(folder / "log"), "racesForTheFirstRecord", {folder / "log"});
    EXPECT_EQ(result.status.code(), 0) << result.errors;
    Records records = recordsIn(result.output);
    std::sort(records.begin(), records.end());
    Records expected;
    for (int thread = 0; thread < threadCount; ++thread) {
        expected.push_back(errorRecord(message(thread, 0)));
    }
    EXPECT_EQ(records, expected);
}

TEST(LogThreads, writeWholeLinesInTheirOrderToEverySink) {
    const TemporaryFolder folder;
    const Result result =
        runRoleWith(textFile(folder / "log"), "logsFromThreadsToTwoSinks", {folder.path()});
    EXPECT_EQ(result.status.code(), 0) << result.errors;
    expectTheRecordsOfAllThreads(folder / "log");
    expectTheRecordsOfAllThreads(folder / "second.log");
}

TEST(LogThreads, mayLogAfterTheirThreadLocalObjectsAreDestroyed) {
    const TemporaryFolder folder;
    const Result result = runRoleWith(textFile(folder / "log"), "logsAtTheEndOfAThread");
    EXPECT_EQ(result.status.code(), 0) << result.errors;
    EXPECT_EQ(recordsIn(readFile(folder / "log")),
              (Records{errorRecord(message(0, 0)), errorRecord(message(0, 1))}));
}
