// Log lines, and the floor under them.
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>

#include "CoreMisc/src/VyLog.h"
#include "bench/LogRecord.h"
#include "bench/Operation.h"
#include "bench/floors/LogFloor.h"

namespace vantric_bench {

namespace {

using com_qel::VyLog;

void setVariable(const char* name, const std::string& value) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): this program has one thread
    setenv(name, value.c_str(), 1);
}

bool stream(VyLog::Level level) {
    VyLog(level, logSourcePath, logLine, 0).stream() << logText << logReason;
    return true;
}

bool append() {
    VyLog(VyLog::Error, logSourcePath, logLine, 0).append(logText).append(logReason);
    return true;
}

std::string productLog() {
    return logFolder() / "product.log";
}

// Asks for the length once a batch: reading the file would count as the cost of its lines.
int linesSinceLastCall() {
    static std::uintmax_t lastSize = 0;
    const std::uintmax_t size = std::filesystem::file_size(productLog());
    const std::uintmax_t growth = size - std::exchange(lastSize, size);
    constexpr std::uintmax_t shortestLine = 100;
    const bool isComplete = growth % batchSize == 0 && growth / batchSize >= shortestLine;
    return isComplete ? batchSize : 0;
}

// The first record of the process configures the log from these variables.
template <class Callable>
Repetition repeatRecord(Callable write, int expectedLines) {
    setVariable("VRAX_LOG_LEVEL", "error");
    setVariable("VRAX_LOG_TYPE", "text_file");
    setVariable("VRAX_LOG_NAME", productLog());
    return repeatSending(write,
                         [=] { return linesSinceLastCall() == expectedLines ? batchSize : 0; });
}

Repetition logFloor() {
    auto floor = std::make_shared<LogFloor>(logFolder() / "floor.log");
    return repeat([=] { return floor->write(logSourceName, logLine, logText, logReason); });
}

}  // namespace

const vantric_test::TemporaryFolder& logFolder() {
    setVariable("TMPDIR", "/dev/shm");
    static const vantric_test::TemporaryFolder folder;
    return folder;
}

Operations logOperations() {
    return {
        {logRow, floorRole, "floorLogLine", logFloor},
        {logRow, productRole, "logAppended", [] { return repeatRecord(append, batchSize); }},
        {logRow, productRole, "logStreamed",
         [] { return repeatRecord([] { return stream(VyLog::Error); }, batchSize); }},
        {logRow, productRole, "logBelowThreshold",
         [] { return repeatRecord([] { return stream(VyLog::Info); }, 0); }},
    };
}

}  // namespace vantric_bench
