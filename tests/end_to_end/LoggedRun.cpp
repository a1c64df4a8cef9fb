#include "tests/end_to_end/LoggedRun.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "tests/end_to_end/Bench.h"
#include "tests/end_to_end/LogLines.h"
#include "tests/end_to_end/Transcript.h"

namespace vantric_test {

void set(LogSettings& settings, const char* variable, const SettingText& text) {
    if (text) {
        settings[variable] = *text;
    }
}

std::string printable(const SettingText& text) {
    constexpr std::size_t longest = 40;
    if (!text) {
        return "unset";
    }
    return testing::PrintToString(text->substr(0, longest)) + (text->size() > longest ? "..." : "");
}

Command withSettings(Command command, const LogSettings& settings) {
    for (const auto& [variable, value] : settings) {
        command.environment[variable] = value;
    }
    return command;
}

Tree treeOf(const std::filesystem::path& folder) {
    Tree tree;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        const std::string name = std::filesystem::relative(entry.path(), folder);
        tree[name] = entry.is_directory() ? treeFolder : normalised(bytesOf(entry.path()));
    }
    return tree;
}

std::string bytesOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << "there is no file " << path;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

WorkingFolder::WorkingFolder() {
    std::filesystem::current_path(path());
}

WorkingFolder::~WorkingFolder() {
    std::error_code ignored;
    std::filesystem::current_path(before_, ignored);
}

std::string printErrors(std::size_t count, const LogSettings& settings) {
    const std::vector<std::string> commands(count, "--forgetwifi");
    return normalised(runCleanly(withSettings(probe(commands), settings)).output);
}

std::string failuresToConnect(std::size_t count) {
    return repeated("Failed to connect\n", count);
}

LogSettings errorLog(const std::filesystem::path& folder, const std::string& type,
                     const std::string& size) {
    return {{"VRAX_LOG_LEVEL", "error"},
            {"VRAX_LOG_TYPE", type},
            {"VRAX_LOG_ROOT", folder},
            {"VRAX_LOG_NAME", "log"},
            {"VRAX_LOG_SIZE", size}};
}

LogSettings rollingFile(const SettingText& size) {
    LogSettings settings = {{"VRAX_LOG_LEVEL", "error"}, {"VRAX_LOG_TYPE", "rolling_text_file"}};
    set(settings, "VRAX_LOG_SIZE", size);
    return settings;
}

}  // namespace vantric_test
