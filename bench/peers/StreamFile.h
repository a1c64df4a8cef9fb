// The log line through the standard streams, with a time stamp made for each, flushed.
#pragma once

#include <ctime>
#include <fstream>
#include <iomanip>
#include <sstream>
#include <string>

namespace vantric_bench {

class StreamFile {
  public:
    explicit StreamFile(const std::string& path) : file_(path) {}

    bool write(const char* file, int line, const char* text, const char* reason) {
        const std::time_t now = std::time(nullptr);
        std::tm local = {};
        localtime_r(&now, &local);
        std::ostringstream stream;
        stream << '[' << std::put_time(&local, "%c") << "\n] <error>: " << std::setw(7) << "ERROR"
               << '|' << std::setw(35) << file << '|' << std::setw(5) << line << '|' << text
               << reason;
        file_ << stream.str() << '\n' << std::flush;
        return file_.good();
    }

  private:
    std::ofstream file_;
};

}  // namespace vantric_bench
