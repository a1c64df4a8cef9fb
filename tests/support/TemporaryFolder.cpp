#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace vantric_test {

TemporaryFolder::TemporaryFolder() {
    std::string pattern = std::filesystem::temp_directory_path() / "vantric_test_XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("cannot create a temporary folder");
    }
    path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string TemporaryFolder::write(const std::string& name, const std::string& content) const {
    std::string file = *this / name;
    std::ofstream(file) << content;
    return file;
}

}  // namespace vantric_test
