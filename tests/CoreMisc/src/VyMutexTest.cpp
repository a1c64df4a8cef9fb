#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <optional>
#include <type_traits>

#include "CoreMisc/src/VyLog.h"
#include "CoreMisc/src/VyMutex.h"
#include "tests/CoreMisc/LogTestSupport.h"
#include "tests/CoreMisc/MutexFault.h"
#include "tests/support/Allocations.h"

using com_qel::VyLog;
using com_qel::utils::Mutex;
using namespace vantric_test;

namespace {

static_assert(std::has_virtual_destructor_v<Mutex>);
static_assert(sizeof(Mutex) == sizeof(void*) + sizeof(pthread_mutex_t));
static_assert(std::is_nothrow_destructible_v<Mutex>);
static_assert(Mutex::ERR_BUSY == 1 && Mutex::ERR_UNKNOWN == 2);

constexpr uint64_t mutexCategory = 2;

// The captured records with the line number, which is not fixed, blanked out.
Records withoutLineNumbers(const Records& records) {
    Records result;
    const std::size_t levelEnd = std::strlen("trace:   TRACE|");
    const std::size_t lineBegin = levelEnd + 36;
    for (std::string record : records) {
        const std::string line = record.substr(lineBegin, 6);
        EXPECT_EQ(line.find_first_not_of(" 0123456789"), 5U) << record;
        EXPECT_EQ(line.back(), '|') << record;
        result.push_back(record.replace(lineBegin, 5, "    *"));
    }
    return result;
}

std::string fileAndLine() {
    return std::string(28, ' ') + "VyMutex|    *|";
}

std::string tracing(const std::string& message) {
    return "trace:   TRACE|" + fileAndLine() + "TRACE:0x0000000000000002|" + message;
}

std::string error(const std::string& message) {
    return "error:   ERROR|" + fileAndLine() + message;
}

const RoleRegistration locksWithoutMemory("locksWithoutMemory", [](const Arguments&) {
    Mutex mutex;
    const MutexFault fault(MutexCall::lock, EINVAL, &mutex, sizeof(mutex));
    const Allocations noMemory(1);
    return mutex.Lock();
});

}  // namespace

TEST(VyMutex, locksAndUnlocksAndLogsNothing) {
    const RecordCapture capture;
    Mutex mutex;
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(mutex.Lock(), 0);
        EXPECT_EQ(mutex.Unlock(), 0);
    }
    EXPECT_EQ(capture.records(), Records());
}

TEST(VyMutex, tracesEveryOperationUnderItsCategoryOnly) {
    const RecordCapture capture;
    for (const uint64_t mask : {~mutexCategory, mutexCategory | 8}) {
        VyLog::SetTraceMask(mask);
        Mutex mutex;
        mutex.Lock();
        mutex.Unlock();
    }
    EXPECT_EQ(withoutLineNumbers(capture.records()),
              (Records{tracing("Mutex initialization"), tracing("Mutex lock"),
                       tracing("Mutex unlock"), tracing("Mutex destroy")}));
}

TEST(VyMutex, reportsAFailedLockOrUnlockAfterItsTrace) {
    const struct {
        MutexCall call;
        int posixResult;
        int result;
        const char* name;
        const char* message;
    } rows[] = {
        {MutexCall::lock, EBUSY, 1, "lock", "ERR_BUSY"},
        {MutexCall::lock, EINVAL, 2, "lock", "ERR_UNKNOWN (22)"},
        {MutexCall::unlock, EPERM, 2, "unlock", "ERR_UNKNOWN (1)"},
        {MutexCall::unlock, EBUSY, 2, "unlock", "ERR_UNKNOWN (16)"},
    };
    for (const auto& [call, posixResult, result, name, message] : rows) {
        Mutex mutex;
        const RecordCapture capture;
        VyLog::SetTraceMask(mutexCategory);
        {
            const MutexFault fault(call, posixResult, &mutex, sizeof(mutex));
            EXPECT_EQ(call == MutexCall::lock ? mutex.Lock() : mutex.Unlock(), result);
        }
        const std::string operation = std::string("Mutex ") + name;
        EXPECT_EQ(
            withoutLineNumbers(capture.records()),
            (Records{tracing(operation), error(operation + " failed, ERROR code: " + message)}));
    }
}

TEST(VyMutex, isUsableAfterAFailedInitialisationWasLogged) {
    const RecordCapture capture;
    VyLog::SetTraceMask(mutexCategory);
    std::optional<Mutex> mutex;
    {
        const MutexFault fault(MutexCall::initialise, EAGAIN, &mutex, sizeof(mutex));
        mutex.emplace();
        EXPECT_FALSE(fault.hadAttributes());
    }
    EXPECT_EQ(withoutLineNumbers(capture.records()),
              (Records{tracing("Mutex initialization"),
                       error("Mutex initialization failed, ERROR code: 11")}));
    EXPECT_EQ(mutex->Lock(), 0);
    EXPECT_EQ(mutex->Unlock(), 0);
}

TEST(VyMutex, logsAFailedDestruction) {
    const RecordCapture capture;
    VyLog::SetTraceMask(mutexCategory);
    auto mutex = std::make_unique<Mutex>();
    {
        const MutexFault fault(MutexCall::destroy, EBUSY, mutex.get(), sizeof(Mutex));
        mutex.reset();
    }
    EXPECT_EQ(withoutLineNumbers(capture.records()),
              (Records{tracing("Mutex initialization"), tracing("Mutex destroy"),
                       error("Mutex destructor failed, ERROR code: 16")}));
}

TEST(VyMutex, reportsAFailureThatThereIsNoMemoryToLog) {
    const Result result = runRoleWith({}, "locksWithoutMemory");
    EXPECT_EQ(result.status.code(), 2) << result.errors;
}

TEST(VyMutex, existsOncePerProcessFromBeforeMainToTheEnd) {
    const LogEnvironment environment(LogSettings{{"VRAX_LOG_LEVEL", "error"}});
    const Result result = run({MUTEX_BEFORE_MAIN_PATH});
    EXPECT_EQ(withoutLineNumbers(recordsIn(result.output)),
              Records{error("Mutex initialization failed, ERROR code: 12")});
    EXPECT_EQ(result.status.code(), 0) << "the process-wide mutex was destroyed";
}
