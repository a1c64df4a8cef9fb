// Stands in front of the C library's system log and keeps what would have been sent.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace vantric_test {

struct SystemLogOpening {
    bool hasIdentity;
    int options;
    int facility;
};

struct SystemLogEntry {
    int priority;
    std::string format;
    std::string text;
};

struct SystemLog {
    std::function<void()> whileOpening = [] {};  // called while the system log is being opened
    std::vector<SystemLogOpening> openings;
    std::vector<SystemLogEntry> entries;
};

// What this process has sent so far; may be cleared.
SystemLog& systemLog();

}  // namespace vantric_test
