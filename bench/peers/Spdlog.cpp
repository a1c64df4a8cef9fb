// The log line through spdlog, flushed.
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

#include <memory>

#include "bench/LogRecord.h"
#include "bench/Operation.h"

namespace vantric_bench {

namespace {

Repetition write() {
    auto logger = std::make_shared<spdlog::logger>(
        "bench", std::make_shared<spdlog::sinks::basic_file_sink_mt>(logFolder() / "spdlog.log"));
    logger->set_pattern("[%a %b %d %H:%M:%S %Y\n] <%l>: %v");
    logger->flush_on(spdlog::level::err);
    return repeat([=] {
        logger->error("{:>7}|{:>35}|{:>5}|{}{}", "ERROR", logSourceName, logLine, logText,
                      logReason);
        return true;
    });
}

}  // namespace

Operations spdlogPeers() {
    return {{logRow, peerRole, "spdlog", write}};
}

}  // namespace vantric_bench
