// Preloaded into a program, replaces the calls by which it reads the clock, sleeps and waits for a
// semaphore: the time is that of the shared page.
#include <dlfcn.h>
#include <fcntl.h>
#include <semaphore.h>
#include <sys/mman.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "tests/support/Timespec.h"
#include "tests/transcripts/SteppedClockPage.h"

namespace {

using namespace vantric_test;

constexpr int64_t pauseOfLoops = 100'000'000;
constexpr int64_t lockRetry = 1'000'000;
constexpr int64_t startOfWallClock = 1'893'456'000 * nanosecondsPerSecond;  // 2030-01-01, UTC
constexpr int64_t startOfMonotonicClock = 1'000 * nanosecondsPerSecond;

// A program that reads the monotonic clock that often without sleeping polls a deadline in a loop:
// time must go on for it.
constexpr int readingsWithoutSleep = 100;

SteppedClockPage* page = nullptr;
int self = 0;
int readings = 0;

void sleepUntil(int64_t wakeTime) {
    readings = 0;
    SteppedClockPage::Participant& own = page->participants[self];
    own.wakeTime = wakeTime;
    own.state = turnWaiting;
    // The client's every pause is the director's opportunity to collect what it has written.
    if (self == clockClient) {
        page->giveTurn(page->participants[clockDirector]);
    } else {
        page->passTurnOn();
    }
    while (own.state == turnWaiting) {
        SteppedClockPage::awaitTurn(own, nullptr);
    }
}

[[noreturn]] void fail(const char* step) {
    std::perror(step);
    std::abort();
}

// The program starts when its turn comes. One that a program on the clock executes in its place
// has the turn already.
struct Start {
    Start() noexcept {
        // NOLINTBEGIN(concurrency-mt-unsafe): nothing of the program runs yet
        const char* file = std::getenv(steppedClockFile);
        const char* participant = std::getenv(steppedClockParticipant);
        // NOLINTEND(concurrency-mt-unsafe)
        if (file == nullptr || participant == nullptr) {
            errno = EINVAL;
            fail("stepped clock");
        }
        self = static_cast<int>(std::strtol(participant, nullptr, 10));
        const int descriptor = open(file, O_RDWR | O_CLOEXEC);
        void* address = mmap(nullptr, sizeof(SteppedClockPage), PROT_READ | PROT_WRITE, MAP_SHARED,
                             descriptor, 0);
        if (address == MAP_FAILED) {
            fail("stepped clock");
        }
        close(descriptor);
        page = static_cast<SteppedClockPage*>(address);

        SteppedClockPage::Participant& own = page->participants[self];
        if (own.state == turnRunning) {
            return;
        }
        own.wakeTime = page->now;
        own.state = turnWaiting;
        while (own.state == turnWaiting) {
            SteppedClockPage::awaitTurn(own, nullptr);
        }
    }
};

const Start start;

}  // namespace

extern "C" {

int clock_gettime(clockid_t clock, timespec* time) noexcept {
    if (page == nullptr || (clock != CLOCK_REALTIME && clock != CLOCK_MONOTONIC)) {
        using Function = int (*)(clockid_t, timespec*);
        static const auto original = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "clock_gettime"));
        return original(clock, time);
    }
    if (clock == CLOCK_MONOTONIC && ++readings == readingsWithoutSleep) {
        sleepUntil(page->now + pauseOfLoops);
    }
    const int64_t startOfClock =
        clock == CLOCK_REALTIME ? startOfWallClock + page->wallClockStep : startOfMonotonicClock;
    *time = timespecOf(startOfClock + page->now);
    return 0;
}

time_t time(time_t* result) noexcept {
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    if (result != nullptr) {
        *result = now.tv_sec;
    }
    return now.tv_sec;
}

int nanosleep(const timespec* duration, timespec*) {
    sleepUntil(page->now + nanosecondsOf(*duration));
    return 0;
}

// A holder that sleeps needs its turn to come to the point of posting.
int sem_wait(sem_t* semaphore) {
    while (sem_trywait(semaphore) != 0) {
        sleepUntil(page->now + lockRetry);
    }
    return 0;
}

int sem_post(sem_t* semaphore) noexcept {
    using Function = int (*)(sem_t*);
    static const auto original = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "sem_post"));
    const int result = original(semaphore);
    if (self == clockClient && page->clientUnlockPause != 0) {
        sleepUntil(page->now + page->clientUnlockPause);
    }
    return result;
}

}  // extern "C"
