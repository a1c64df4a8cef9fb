// soak_hunts: long hunts with real processes against each other, in a private /dev/shm.
#include <CLI/CLI.hpp>
#include <cinttypes>
#include <cstdio>
#include <functional>
#include <random>

#include "tests/soak/ConstructionRace.h"
#include "tests/soak/FrameHunt.h"
#include "tests/soak/KillStorm.h"
#include "tests/soak/Supervision.h"
#include "tests/soak/TornReadHunt.h"
#include "tests/support/PrivateSharedMemory.h"

namespace {

constexpr int success = 0;
constexpr int propertyFailed = 1;
constexpr int usageFailure = 2;

struct Options {
    uint64_t seed = 0;
    uint32_t timeLimit = 1800;  // seconds
    vantric_soak::FrameHuntSize frames;
    vantric_soak::TornReadHuntSize reads;
    vantric_soak::KillStormSize kills;
    vantric_soak::ConstructionRaceSize races;
    std::function<void(vantric_soak::Supervision&)> hunt;
};

uint64_t randomSeed() {
    std::random_device device;
    return uint64_t{device()} << 32U | device();
}

void declareHunts(CLI::App& app, Options& options) {
    using vantric_soak::Supervision;
    auto* frames = app.add_subcommand(
        "frames",
        "Producers and a consumer at the ring: what was written arrives, and only a "
        "ring without room drops");
    frames->add_option("--count", options.frames.frames, "Frames to be delivered")
        ->capture_default_str();
    frames->add_option("--producers", options.frames.producers, "Processes that send")
        ->check(CLI::Range(1, 8))
        ->capture_default_str();
    frames->callback([&options] {
        options.hunt = [&options](Supervision& supervision) {
            huntFrames(options.frames, options.seed, supervision);
        };
    });
    auto* reads = app.add_subcommand("reads", "A writer and readers of the states: no torn copy");
    reads->add_option("--count", options.reads.reads, "Reads of all readers")
        ->capture_default_str();
    reads->add_option("--readers", options.reads.readers, "Processes that read")
        ->check(CLI::Range(1, 16))
        ->capture_default_str();
    reads->callback([&options] {
        options.hunt = [&options](Supervision& supervision) {
            huntTornReads(options.reads, options.seed, supervision);
        };
    });
    auto* kills = app.add_subcommand("kills", "Clients killed anywhere while the server goes on");
    kills->add_option("--count", options.kills.kills, "Clients of the library to kill")
        ->capture_default_str();
    kills->add_option("--programs", options.kills.killedPrograms, "vantricprobes to kill")
        ->capture_default_str();
    kills->callback([&options] {
        options.hunt = [&options](Supervision& supervision) {
            stormWithKills(options.kills, options.seed, supervision);
        };
    });
    auto* races = app.add_subcommand("races", "Racing constructions of one lock: a bounded value");
    races->add_option("--count", options.races.rounds, "Races")->capture_default_str();
    races->add_option("--processes", options.races.processes, "Processes that construct")
        ->check(CLI::Range(2, 64))
        ->capture_default_str();
    races->callback([&options] {
        options.hunt = [&options](Supervision& supervision) {
            huntConstructionRaces(options.races, options.seed, supervision);
        };
    });
}

int run(int argc, char** argv) {
    CLI::App app("Hunts for faults between processes, in a private /dev/shm.", "soak_hunts");
    Options options;
    options.seed = randomSeed();
    options.kills.probePath = VANTRICPROBE_PATH;
    options.kills.simulatorPath = VANTRICSIM_PATH;
    app.add_option("--seed", options.seed, "What all randomness follows from (default: random)");
    app.add_option("--time-limit", options.timeLimit, "Seconds after which the hunt fails")
        ->capture_default_str();
    app.require_subcommand(1);
    app.fallthrough();
    app.footer(
        "Exit status: 0 every property held, 1 one did not (standard error names it), 2 bad "
        "option.");
    declareHunts(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == success ? success : usageFailure;
    }
    vantric_test::enterPrivateSharedMemory();
    std::printf("seed %" PRIu64 "\n", options.seed);
    vantric_soak::Supervision supervision(std::chrono::seconds(options.timeLimit));
    try {
        options.hunt(supervision);
        return success;
    } catch (const std::exception& error) {
        std::fflush(stdout);
        std::fprintf(stderr, "soak_hunts: after %.1f s: %s (seed %" PRIu64 ")\n",
                     supervision.seconds(), error.what(), options.seed);
        return propertyFailed;
    }
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "soak_hunts: %s\n", error.what());
        return propertyFailed;
    }
}
