// A line to a log file, flushed.
#include <cstdlib>
#include <memory>

#include "CoreMisc/src/VyLog.h"
#include "bench/floors/LogFloor.h"
#include "bench/peers/SpdlogFile.h"
#include "bench/peers/StreamFile.h"
#include "bench/support/LogRecordText.h"
#include "bench/support/Measurement.h"
#include "tests/support/TemporaryFolder.h"

namespace vantric_bench {

namespace {

using com_qel::VyLog;

constexpr const char* row = "log line";

void setVariable(const char* name, const std::string& value) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): this program has one thread
    setenv(name, value.c_str(), 1);
}

template <class Writer>
void addWriter(const char* role, const char* what, const std::string& path) {
    auto writer = std::make_shared<Writer>(path);
    addOperation(row, role, what,
                 [=] { return writer->write(logSourceName, logLine, logText, logReason); });
}

bool streamRecord(VyLog::Level level) {
    VyLog(level, logSourcePath, logLine, 0).stream() << logText << logReason;
    return true;
}

bool appendRecord() {
    VyLog(VyLog::Error, logSourcePath, logLine, 0).append(logText).append(logReason);
    return true;
}

}  // namespace

void registerRows() {
    // In the private memory file system: a disk's own work would be part of some lines.
    setVariable("TMPDIR", "/dev/shm");
    static const vantric_test::TemporaryFolder folder;
    setVariable("VRAX_LOG_LEVEL", "error");
    setVariable("VRAX_LOG_TYPE", "text_file");
    setVariable("VRAX_LOG_NAME", folder / "product.log");
    addWriter<LogFloor>(floorRole, "by hand", folder / "floor.log");
    addOperation(row, productRole, "to a file", [] { return streamRecord(VyLog::Error); });
    addOperation(row, productRole, "to a file, without a stream", appendRecord);
    addOperation(row, productRole, "below the threshold", [] { return streamRecord(VyLog::Info); });
    addWriter<SpdlogFile>(peerRole, "spdlog", folder / "spdlog.log");
    addWriter<StreamFile>(peerRole, "string stream and file stream, fresh stamp",
                          folder / "stream.log");
}

}  // namespace vantric_bench
