// The least that a flushed log line takes: fprintf() and fflush(), with a time stamp that is ready.
#pragma once

#include <cstdio>
#include <stdexcept>
#include <string>

namespace vantric_bench {

class LogFloor {
  public:
    explicit LogFloor(const std::string& path) : file_(std::fopen(path.c_str(), "w")) {
        if (file_ == nullptr) {
            throw std::runtime_error("cannot open " + path);
        }
    }
    ~LogFloor() { std::fclose(file_); }
    LogFloor& operator=(LogFloor&&) = delete;

    bool write(const char* file, int line, const char* text, const char* reason) {
        const int length = std::fprintf(file_, "[%s] <error>: %7s|%35s|%5d|%s%s\n", stamp, "ERROR",
                                        file, line, text, reason);
        return std::fflush(file_) == 0 && length > 0;
    }

  private:
    static constexpr const char* stamp = "Sat Nov 21 04:17:38 2026\n";

    std::FILE* file_;
};

}  // namespace vantric_bench
