// An empty folder that is removed with everything in it.
#pragma once

#include <filesystem>
#include <string>

namespace vantric_test {

class TemporaryFolder {
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder& operator=(TemporaryFolder&&) = delete;

    const std::filesystem::path& path() const { return path_; }

    // The path of a file in the folder.
    std::string operator/(const std::string& name) const { return path_ / name; }

    // Writes a file in the folder and returns its path.
    std::string write(const std::string& name, const std::string& content) const;

  private:
    std::filesystem::path path_;
};

}  // namespace vantric_test
