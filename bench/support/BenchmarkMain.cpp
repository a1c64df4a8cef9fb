// The main() of every row's program: a private /dev/shm first, then the benchmarks.
#include <benchmark/benchmark.h>
#include <spdlog/version.h>

#include <boost/version.hpp>
#include <cstdio>
#include <exception>
#include <string>

#include "bench/support/Measurement.h"
#include "tests/support/PrivateSharedMemory.h"

namespace {

std::string spdlogVersion() {
    return std::to_string(SPDLOG_VER_MAJOR) + '.' + std::to_string(SPDLOG_VER_MINOR) + '.' +
           std::to_string(SPDLOG_VER_PATCH);
}

int run(int argc, char** argv) {
    vantric_test::enterPrivateSharedMemory();
    benchmark::AddCustomContext("compiler", std::string("g++ ") + __VERSION__);
    benchmark::AddCustomContext("boost", BOOST_LIB_VERSION);
    benchmark::AddCustomContext("spdlog", spdlogVersion());
    vantric_bench::registerRows();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    const bool hasRun = benchmark::RunSpecifiedBenchmarks() != 0;
    benchmark::Shutdown();
    return hasRun ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
