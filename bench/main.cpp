// performance_driver count NAME NUMBER   repeats an operation of the product or a floor; NUMBER is
// a
//                                        multiple of the batch
// performance_driver time ROUNDS [TEXT]  times every row whose name contains TEXT; prints lines of
//                                        row, role, name and nanoseconds of one operation,
//                                        separated by tabs
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>

#include "bench/Operation.h"
#include "tests/support/PrivateSharedMemory.h"

namespace {

using namespace vantric_bench;
using Clock = std::chrono::steady_clock;

Operations allOperations() {
    Operations all;
    for (const auto table : {stateOperations, commandOperations, logOperations, programOperations,
                             boostPeers, socketPeers, busPeers, spdlogPeers}) {
        const Operations some = table();
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

// The time of the batch alone, without that of receiving.
Clock::duration runBatch(const Operation& operation, const Repetition& repetition) {
    const auto start = Clock::now();
    const int succeeded = repetition.run();
    const auto duration = Clock::now() - start;
    if (succeeded != batchSize || repetition.takeAll() != batchSize) {
        throw std::runtime_error(std::string(operation.name) + ": an operation failed or was lost");
    }
    return duration;
}

void count(const std::string& name, long number) {
    for (const Operation& operation : allOperations()) {
        if (operation.name == name && operation.role != peerRole) {
            const Repetition repetition = operation.prepare();
            for (long done = 0; done < number; done += batchSize) {
                runBatch(operation, repetition);
            }
            return;
        }
    }
    throw std::runtime_error("there is no operation " + name);
}

double nanosecondsOfOne(const Operation& operation, const Repetition& repetition) {
    constexpr auto leastTime = std::chrono::milliseconds(5);
    Clock::duration spent{};
    long done = 0;
    while (spent < leastTime) {
        spent += runBatch(operation, repetition);
        done += batchSize;
    }
    return std::chrono::duration<double, std::nano>(spent).count() / static_cast<double>(done);
}

// The operations of a row take turns, each round in another order, so that all of them meet the
// same disturbances.
void timeRow(const std::string& row, const Operations& all, long rounds) {
    std::vector<std::pair<Operation, Repetition>> prepared;
    for (const Operation& operation : all) {
        if (operation.row == row && operation.role != plantedRole) {
            prepared.emplace_back(operation, operation.prepare());
            runBatch(operation, prepared.back().second);
        }
    }
    std::mt19937 random{std::random_device()()};
    for (long round = 0; round < rounds; ++round) {
        std::shuffle(prepared.begin(), prepared.end(), random);
        for (const auto& [operation, repetition] : prepared) {
            std::printf("%s\t%s\t%s\t%.2f\n", operation.row, operation.role.data(), operation.name,
                        nanosecondsOfOne(operation, repetition));
        }
    }
}

void time(long rounds, const std::string& text) {
    const Operations all = allOperations();
    std::vector<std::string> rows;
    for (const Operation& operation : all) {
        const std::string row = operation.row;
        if (row.find(text) != std::string::npos &&
            std::find(rows.begin(), rows.end(), row) == rows.end()) {
            rows.push_back(row);
            timeRow(row, all, rounds);
        }
    }
}

int run(const std::vector<std::string>& arguments) {
    const std::string mode = arguments.empty() ? "" : arguments[0];
    const bool isCount = mode == "count" && arguments.size() == 3;
    const bool isTime = mode == "time" && (arguments.size() == 2 || arguments.size() == 3);
    if (!isCount && !isTime) {
        std::fputs("performance_driver count NAME NUMBER | time ROUNDS [TEXT]\n", stderr);
        return 2;
    }
    vantric_test::enterPrivateSharedMemory();
    if (isCount) {
        count(arguments[1], std::stol(arguments[2]));
    } else {
        time(std::stol(arguments[1]), arguments.size() == 3 ? arguments[2] : "");
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run({argv + 1, argv + argc});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
