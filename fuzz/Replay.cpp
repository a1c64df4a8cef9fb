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
    Paths files;
    if (!is_directory(path)) {
        return {path};
    }
    for (const auto& entry : std::filesystem::directory_iterator(path)) {
        files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::vector<uint8_t> contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read " + path.string());
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

int replay(const Paths& paths) {
    int count = 0;
    for (const auto& path : paths) {
        for (const auto& file : filesIn(path)) {
            const std::vector<uint8_t> content = contentOf(file);
            std::printf("%s\n", file.c_str());
            std::fflush(stdout);
            LLVMFuzzerTestOneInput(content.data(), content.size());
            ++count;
        }
    }
    std::printf("%d inputs, no broken promise\n", count);
    return count == 0 ? 2 : 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const Paths paths(argv + 1, argv + argc);
        LLVMFuzzerInitialize(&argc, &argv);
        return replay(paths);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 2;
    }
}
