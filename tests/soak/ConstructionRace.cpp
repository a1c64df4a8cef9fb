#include "tests/soak/ConstructionRace.h"

#include <pthread.h>
#include <sched.h>

#include <array>
#include <cinttypes>
#include <cstdio>
#include <string>

#include "Vantric/Utils/MultiProcessLock.h"
#include "tests/soak/Randomness.h"
#include "tests/support/RawSemaphore.h"
#include "tests/support/SemaphoreCalls.h"

namespace vantric_soak {

namespace {

using com_qel::Orvane::Vantric::ClientServer::MultiProcessLock;
using vantric_test::RawSemaphore;
using vantric_test::SemaphoreMoment;

constexpr const char* lockName = "RacedLock";
constexpr uint32_t mostProcesses = 64;

// Constructions of a free-running process between two meetings.
constexpr int constructionsInARow = 4;

enum Stage : std::size_t { oneEach, severalEach, stageCount };

constexpr std::array<const char*, stageCount> stageTexts = {
    "each process constructs once, then the value is set to 1 again:",
    "each constructs several in a row, and the value is never set back:"};

struct RaceArea {
    pthread_barrier_t meeting;
    std::atomic<uint64_t> rounds{0};
    std::array<std::array<std::atomic<uint64_t>, mostProcesses + 1>, stageCount> seen;
};

void prepareMeeting(RaceArea& area, uint32_t processes) {
    pthread_barrierattr_t attributes;
    pthread_barrierattr_init(&attributes);
    pthread_barrierattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
    require(pthread_barrier_init(&area.meeting, &attributes, processes) == 0,
            "the processes cannot meet");
    pthread_barrierattr_destroy(&attributes);
}

// Waits until all processes are here.
void meet(RaceArea& area) {
    pthread_barrier_wait(&area.meeting);
}

// Lets the others run between a construction's check and its post, half of the time.
void widenTheGap(Randomness& randomness) {
    vantric_test::observeSemaphoreCalls([&](SemaphoreMoment moment, const sem_t*) {
        if (moment == SemaphoreMoment::AboutToPost && randomness.below(2) == 0) {
            sched_yield();
        }
    });
}

void checkValue(const RawSemaphore& semaphore, uint32_t processes, RaceArea& area, Stage stage) {
    const int value = semaphore.value();
    require(value >= 1 && value <= static_cast<int>(processes),
            "the semaphore stands at " + std::to_string(value) + " after " +
                std::to_string(processes) + " processes raced");
    ++area.seen.at(stage).at(static_cast<std::size_t>(value));
}

void race(const ConstructionRaceSize& size, bool isReferee, uint64_t seed, RaceArea& area) {
    Randomness randomness(seed);
    RawSemaphore semaphore(lockName);
    widenTheGap(randomness);
    for (const Stage stage : {oneEach, severalEach}) {
        const int constructions = stage == oneEach ? 1 : constructionsInARow;
        for (uint64_t round = 0; round < size.rounds / stageCount; ++round) {
            meet(area);
            for (int count = 0; count < constructions; ++count) {
                const MultiProcessLock lock(lockName);
            }
            meet(area);
            if (isReferee) {
                checkValue(semaphore, size.processes, area, stage);
                ++area.rounds;
                while (stage == oneEach && semaphore.value() > 1) {
                    require(semaphore.tryTake(), "somebody else has taken the semaphore");
                }
            }
        }
    }
}

}  // namespace

void huntConstructionRaces(const ConstructionRaceSize& size, uint64_t seed,
                           Supervision& supervision) {
    require(size.processes <= mostProcesses, "too many processes");
    const SharedArea<RaceArea> area;
    prepareMeeting(*area, size.processes);
    const MultiProcessLock creator(lockName);
    for (uint32_t process = 0; process < size.processes; ++process) {
        supervision.start([&, process] { race(size, process == 0, mixed(seed, process), *area); });
    }
    supervision.awaitEnds([&] {
        return std::to_string(area->rounds) + " of " + std::to_string(size.rounds) + " races";
    });

    std::printf("races: %" PRIu64 " of %u processes, no value below 1 or above %u; %.1f s\n",
                area->rounds.load(), size.processes, size.processes, supervision.seconds());
    for (const Stage stage : {oneEach, severalEach}) {
        std::printf("  %s\n   ", stageTexts.at(stage));
        uint64_t raised = 0;
        for (std::size_t value = 1; value <= size.processes; ++value) {
            const uint64_t count = area->seen.at(stage).at(value);
            raised += value > 1 ? count : 0;
            std::printf(" %zu: %" PRIu64, value, count);
        }
        std::printf(" (value: times seen)\n");
        require(raised != 0, "no race has raised the value, so none was tight");
    }
}

}  // namespace vantric_soak
