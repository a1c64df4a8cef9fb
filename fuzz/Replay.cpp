// Runs a fuzz target over files instead of a fuzzer's inventions; needs no particular compiler.
//
// Usage: replay_TARGET FILE|FOLDER...
// Prints each file's name before it runs, so the last one printed is the one that failed. Exit
// status: 0 every file ran, 2 there is nothing to run or a file cannot be read.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <vector>

#include "fuzz/Target.h"

namespace {

using Paths = std::vector<std::filesystem::path>;

Paths filesIn(const std::filesystem::path& path) {
    if (!is_directory(path)) {
        return {path};
    }
    Paths files(std::filesystem::directory_iterator(path), {});
    std::sort(files.begin(), files.end());
    return files;
}

void replay(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read " + path.string());
    }
    const std::vector<char> content(std::istreambuf_iterator<char>(file), {});
    std::printf("%s\n", path.c_str());
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(content.data()), content.size());
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const Paths arguments(argv + 1, argv + argc);
        LLVMFuzzerInitialize(&argc, &argv);
        std::size_t count = 0;
        for (const auto& argument : arguments) {
            const Paths files = filesIn(argument);
            std::for_each(files.begin(), files.end(), replay);
            count += files.size();
        }
        std::printf("%zu inputs, no broken promise\n", count);
        return count == 0 ? 2 : 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 2;
    }
}
