// The log line through spdlog, flushed.
#pragma once

#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

#include <memory>
#include <string>

namespace vantric_bench {

class SpdlogFile {
  public:
    explicit SpdlogFile(const std::string& path)
        : logger_("bench", std::make_shared<spdlog::sinks::basic_file_sink_mt>(path, true)) {
        logger_.set_pattern("[%a %b %d %H:%M:%S %Y\n] <%l>: %v");
        logger_.flush_on(spdlog::level::err);
    }

    bool write(const char* file, int line, const char* text, const char* reason) {
        logger_.error("{:>7}|{:>35}|{:>5}|{}{}", "ERROR", file, line, text, reason);
        return true;
    }

  private:
    spdlog::logger logger_;
};

}  // namespace vantric_bench
