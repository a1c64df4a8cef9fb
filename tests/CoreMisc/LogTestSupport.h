// What the tests of the logging share: a controlled environment and readers for what was logged.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "CoreMisc/LogInterface/Logger.h"
#include "tests/support/Roles.h"
#include "tests/support/SmallFileSystem.h"
#include "tests/support/TemporaryFolder.h"

namespace vantric_test {

using Names = std::vector<std::string>;    // of files
using Records = std::vector<std::string>;  // of a log

// The whole content of a file; throws std::runtime_error when there is none.
std::string readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const std::string& content);

// The names in a folder, sorted.
std::vector<std::string> namesIn(const std::filesystem::path& folder);

// While it lives, this process's environment holds these VRAX_LOG_* variables and no other ones;
// child processes inherit them. Afterwards it holds none.
using LogSettings = std::map<std::string, std::string>;
class LogEnvironment {
  public:
    explicit LogEnvironment(const LogSettings& settings);
    ~LogEnvironment();
    LogEnvironment& operator=(LogEnvironment&&) = delete;
};

// Runs a role under exactly these VRAX_LOG_* variables.
Result runRoleWith(const LogSettings& settings, const std::string& role,
                   const std::vector<std::string>& arguments = {});

// A role that writes each of its arguments as an error record; errorRecord() is the result.
constexpr const char* writeErrorsRole = "writeErrors";
std::string errorRecord(const std::string& message);

// Splits log output into records in the form "levelName: text". Throws std::runtime_error when
// anything in it does not have the exact shape of a line with its time stamp.
std::vector<std::string> recordsIn(const std::string& output);

// While it lives, this process's log records of at least `threshold` are collected, in the form
// "levelName: text". Resets the switches of the facade at its end. One at a time.
class RecordCapture {
  public:
    explicit RecordCapture(com_qel::Korvel::LogInterface::Severity threshold =
                               com_qel::Korvel::LogInterface::SeverityTrace);
    ~RecordCapture();
    RecordCapture& operator=(RecordCapture&&) = delete;

    const std::vector<std::string>& records() const;
};

}  // namespace vantric_test
