// A run of vantricprobe with log settings, and everything that it leaves behind.
#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace vantric_test {

// VRAX_LOG_* variables; those that are not named are not set.
using LogSettings = std::map<std::string, std::string>;

// A variable's text in a table; empty for a variable that is not set.
using SettingText = std::optional<std::string>;
constexpr auto unset = std::nullopt;
void set(LogSettings& settings, const char* variable, const SettingText& text);
// On one line, a long one shortened.
std::string printable(const SettingText& text);

Command withSettings(Command command, const LogSettings& settings);

// What a folder holds, by path relative to it: the content of files, normalised, and "folder" for
// folders.
using Tree = std::map<std::string, std::string>;
constexpr const char* treeFolder = "folder";
Tree treeOf(const std::filesystem::path& folder);

// The whole content of a file, to the byte. A test failure and an empty text when there is none.
std::string bytesOf(const std::filesystem::path& path);

// An empty folder that the process and those that it starts work in while the object lives.
class WorkingFolder {
  public:
    WorkingFolder();
    ~WorkingFolder();

    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

    const std::filesystem::path& path() const { return folder_.path(); }
    std::string operator/(const std::string& name) const { return folder_ / name; }
    Tree tree() const { return treeOf(path()); }

  private:
    std::filesystem::path before_ = std::filesystem::current_path();
    TemporaryFolder folder_;
};

// Runs as many commands as there are to be error records, each of which fails to connect; call
// refuseConnections() first. Returns what was printed, normalised.
std::string printErrors(std::size_t count, const LogSettings& settings);

// What such a run prints besides records.
std::string failuresToConnect(std::size_t count);

// Settings for error records in the file "log" of a folder.
LogSettings errorLog(const std::filesystem::path& folder, const std::string& type,
                     const std::string& size = "5000");

// Settings for error records in a rolling file with that limit.
LogSettings rollingFile(const SettingText& size);

}  // namespace vantric_test
