// Log lines, and the floor under them.
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "CoreMisc/src/VyLog.h"
#include "bench/driver/Operations.h"
#include "bench/driver/Repetition.h"
#include "bench/floors/LogFloor.h"
#include "bench/support/LogRecordText.h"
#include "tests/support/TemporaryFolder.h"

namespace vantric_bench {

namespace {

using com_qel::VyLog;

void nothing() {}

void streamRecord(VyLog::Level level) {
    VyLog(level, logSourcePath, logLine, 0).stream() << logText << logReason;
}

void appendRecord(VyLog::Level level) {
    VyLog(level, logSourcePath, logLine, 0).append(logText).append(logReason);
}

// One look whatever the number of lines: reading the file would count as the lines' cost.
void requireLines(const std::string& path, long count) {
    constexpr long shortestLine = 100;
    const auto size = static_cast<long>(std::filesystem::file_size(path));
    if (size % count != 0 || size / count < shortestLine) {
        throw std::runtime_error("lines are missing in the log");
    }
}

void setVariable(const char* name, const std::string& value) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): this program has one thread
    setenv(name, value.c_str(), 1);
}

// The first record of the process configures the log from these.
void configure(const char* type, const std::string& path) {
    setVariable("VRAX_LOG_LEVEL", "error");
    setVariable("VRAX_LOG_TYPE", type);
    setVariable("VRAX_LOG_NAME", path);
    setVariable("VRAX_LOG_SIZE", "2000000000");
}

template <class WriteRecord>
void writtenLines(const char* type, long count, WriteRecord writeRecord) {
    const vantric_test::TemporaryFolder folder;
    const std::string path = folder / "driver.log";
    configure(type, path);
    repeat(
        count,
        [=] {
            writeRecord(VyLog::Error);
            return true;
        },
        nothing);
    requireLines(path, count);
}

void belowThreshold(long count) {
    const vantric_test::TemporaryFolder folder;
    const std::string path = folder / "driver.log";
    configure("text_file", path);
    repeat(
        count,
        [] {
            streamRecord(VyLog::Info);
            return true;
        },
        nothing);
    if (std::filesystem::file_size(path) != 0) {
        throw std::runtime_error("a record below the threshold was written");
    }
}

void logFloor(long count) {
    const vantric_test::TemporaryFolder folder;
    const std::string path = folder / "driver.log";
    LogFloor floor(path);
    repeat(
        count, [&] { return floor.write(logSourceName, logLine, logText, logReason); }, nothing);
    requireLines(path, count);
}

}  // namespace

NamedOperations logOperations() {
    return {
        {"floorLogFile", logFloor},
        {"logFile", [](long count) { writtenLines("text_file", count, streamRecord); }},
        {"logFileAppended", [](long count) { writtenLines("text_file", count, appendRecord); }},
        {"logRollingFile",
         [](long count) { writtenLines("rolling_text_file", count, streamRecord); }},
        {"logBelowThreshold", belowThreshold},
    };
}

}  // namespace vantric_bench
