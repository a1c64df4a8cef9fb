#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <new>
#include <thread>
#include <type_traits>

#include "CoreMisc/src/VyLog.h"
#include "CoreMisc/src/VyMutex.h"
#include "tests/CoreMisc/LogTestSupport.h"
#include "tests/CoreMisc/MutexFault.h"
#include "tests/support/Allocations.h"

using com_qel::VyLog;
using com_qel::utils::Mutex;
using vantric_test::MutexCall;
using vantric_test::MutexFault;
using vantric_test::RecordCapture;
using vantric_test::Result;
using Records = std::vector<std::string>;

namespace {

static_assert(std::has_virtual_destructor_v<Mutex>);
static_assert(sizeof(Mutex) == sizeof(void*) + sizeof(pthread_mutex_t));
static_assert(std::is_nothrow_destructible_v<Mutex>);
static_assert(Mutex::ERR_BUSY == 1 && Mutex::ERR_UNKNOWN == 2);

constexpr uint64_t mutexCategory = 2;

// Storage in which a test constructs a mutex by hand, so its address is known beforehand.
struct MutexStorage {
    alignas(Mutex) std::array<unsigned char, sizeof(Mutex)> bytes;

    Mutex* construct() { return new (bytes.data()) Mutex; }
};

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

struct Outcome {
    int result;
    Records records;
};

// One call on a mutex whose POSIX function returns `posixResult`.
Outcome outcomeOf(MutexCall call, int posixResult, uint64_t traceMask = 0) {
    Mutex mutex;
    const RecordCapture capture;
    VyLog::SetTraceMask(traceMask);
    int result = 0;
    {
        const MutexFault fault(call, posixResult, &mutex, sizeof(mutex));
        result = call == MutexCall::lock ? mutex.Lock() : mutex.Unlock();
    }
    return {result, withoutLineNumbers(capture.records())};
}

const vantric_test::RoleRegistration locksWithoutMemory(
    "locksWithoutMemory", [](const std::vector<std::string>&) {
        Mutex mutex;
        const MutexFault fault(MutexCall::lock, EINVAL, &mutex, sizeof(mutex));
        const vantric_test::Allocations noMemory(1);
        return mutex.Lock();
    });

}  // namespace

TEST(VyMutex, locksAndUnlocks) {
    Mutex mutex;
    const MutexFault watch(MutexCall::lock, 0, &mutex, sizeof(mutex));
    EXPECT_EQ(mutex.Lock(), 0);
    EXPECT_EQ(mutex.Unlock(), 0);
    EXPECT_EQ(mutex.Lock(), 0);
    EXPECT_EQ(mutex.Unlock(), 0);
    EXPECT_EQ(watch.calls(), 2);
}

TEST(VyMutex, letsOneThreadInAtATime) {
    constexpr int rounds = 200000;
    Mutex mutex;
    int counter = 0;
    const auto count = [&] {
        for (int round = 0; round < rounds; ++round) {
            mutex.Lock();
            ++counter;
            mutex.Unlock();
        }
    };
    std::thread other(count);
    count();
    other.join();
    EXPECT_EQ(counter, 2 * rounds);
}

TEST(VyMutex, logsNothingWhenAllSucceeds) {
    const RecordCapture capture;
    {
        Mutex mutex;
        mutex.Lock();
        mutex.Unlock();
    }
    EXPECT_EQ(capture.records(), Records());
}

TEST(VyMutex, tracesEveryOperationUnderItsCategory) {
    const RecordCapture capture;
    VyLog::SetTraceMask(mutexCategory);
    {
        Mutex mutex;
        mutex.Lock();
        mutex.Unlock();
    }
    EXPECT_EQ(withoutLineNumbers(capture.records()),
              (Records{tracing("Mutex initialization"), tracing("Mutex lock"),
                       tracing("Mutex unlock"), tracing("Mutex destroy")}));
}

TEST(VyMutex, tracesNothingUnderOtherCategories) {
    const RecordCapture capture;
    VyLog::SetTraceMask(~mutexCategory);
    {
        Mutex mutex;
        mutex.Lock();
        mutex.Unlock();
    }
    EXPECT_EQ(capture.records(), Records());
}

TEST(VyMutex, tracesWhenItsCategoryIsOneOfSeveral) {
    const RecordCapture capture;
    VyLog::SetTraceMask(~uint64_t{0});
    { const Mutex mutex; }
    EXPECT_EQ(withoutLineNumbers(capture.records()),
              (Records{tracing("Mutex initialization"), tracing("Mutex destroy")}));
}

TEST(VyMutex, initialisesWithDefaultAttributes) {
    MutexStorage storage = {};
    const MutexFault watch(MutexCall::initialise, 0, &storage, sizeof(storage));
    Mutex* mutex = storage.construct();
    EXPECT_EQ(watch.calls(), 1);
    EXPECT_FALSE(watch.hadAttributes());
    mutex->~Mutex();
}

TEST(VyMutex, destroysThePosixMutexOnce) {
    auto mutex = std::make_unique<Mutex>();
    const MutexFault watch(MutexCall::destroy, 0, mutex.get(), sizeof(Mutex));
    mutex.reset();
    EXPECT_EQ(watch.calls(), 1);
}

TEST(VyMutex, reportsABusyLockWithoutANumber) {
    const Outcome outcome = outcomeOf(MutexCall::lock, EBUSY);
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.records, Records{error("Mutex lock failed, ERROR code: ERR_BUSY")});
}

TEST(VyMutex, reportsAnyOtherLockFailureWithItsNumber) {
    const Outcome outcome = outcomeOf(MutexCall::lock, EINVAL);
    EXPECT_EQ(outcome.result, 2);
    EXPECT_EQ(outcome.records, Records{error("Mutex lock failed, ERROR code: ERR_UNKNOWN (22)")});
}

TEST(VyMutex, reportsAForbiddenUnlockWithItsNumber) {
    const Outcome outcome = outcomeOf(MutexCall::unlock, EPERM);
    EXPECT_EQ(outcome.result, 2);
    EXPECT_EQ(outcome.records, Records{error("Mutex unlock failed, ERROR code: ERR_UNKNOWN (1)")});
}

TEST(VyMutex, reportsABusyUnlockLikeAnyOther) {
    const Outcome outcome = outcomeOf(MutexCall::unlock, EBUSY);
    EXPECT_EQ(outcome.result, 2);
    EXPECT_EQ(outcome.records, Records{error("Mutex unlock failed, ERROR code: ERR_UNKNOWN (16)")});
}

TEST(VyMutex, tracesALockBeforeItFails) {
    const Outcome outcome = outcomeOf(MutexCall::lock, EDEADLK, mutexCategory);
    EXPECT_EQ(outcome.result, 2);
    EXPECT_EQ(outcome.records, (Records{tracing("Mutex lock"),
                                        error("Mutex lock failed, ERROR code: ERR_UNKNOWN (35)")}));
}

TEST(VyMutex, tracesAnUnlockBeforeItFails) {
    const Outcome outcome = outcomeOf(MutexCall::unlock, EPERM, mutexCategory);
    EXPECT_EQ(outcome.result, 2);
    EXPECT_EQ(outcome.records,
              (Records{tracing("Mutex unlock"),
                       error("Mutex unlock failed, ERROR code: ERR_UNKNOWN (1)")}));
}

TEST(VyMutex, isUsableAfterAFailedInitialisationWasLogged) {
    const RecordCapture capture;
    VyLog::SetTraceMask(mutexCategory);
    MutexStorage storage = {};
    Mutex* mutex = nullptr;
    {
        const MutexFault fault(MutexCall::initialise, EAGAIN, &storage, sizeof(storage));
        mutex = storage.construct();
    }
    EXPECT_EQ(withoutLineNumbers(capture.records()),
              (Records{tracing("Mutex initialization"),
                       error("Mutex initialization failed, ERROR code: 11")}));
    EXPECT_EQ(mutex->Lock(), 0);
    EXPECT_EQ(mutex->Unlock(), 0);
    mutex->~Mutex();
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
    const Result result = vantric_test::runRoleWith({}, "locksWithoutMemory");
    EXPECT_EQ(result.status->code(), 2) << result.errors;
}

namespace {

Result runMutexBeforeMain(const vantric_test::LogSettings& settings) {
    const vantric_test::LogEnvironment environment(settings);
    vantric_test::Command command;
    command.program = MUTEX_BEFORE_MAIN_PATH;
    return vantric_test::run(command);
}

}  // namespace

TEST(VyMutex, existsOncePerProcessBeforeMain) {
    const Result result = runMutexBeforeMain({{"VRAX_LOG_LEVEL", "error"}});
    EXPECT_EQ(withoutLineNumbers(vantric_test::recordsIn(result.output)),
              Records{error("Mutex initialization failed, ERROR code: 12")});
}

TEST(VyMutex, isNeverDestroyedAsTheProcessWideInstance) {
    const Result result = runMutexBeforeMain({});
    EXPECT_EQ(result.status->code(), 0) << result.errors;
    EXPECT_EQ(result.output, "");
}
