// Every accepted transcript against what the programs do now.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

#include "tests/transcripts/TranscriptBench.h"

namespace {

namespace fs = std::filesystem;
using namespace vantric_test;

fs::path acceptedFolder() {
    return fs::path(SOURCE_FOLDER) / "tests" / "transcripts" / "accepted";
}

fs::path scenarioFolder() {
    return fs::path(SOURCE_FOLDER) / "tests" / "transcripts" / "scenarios";
}

fs::path pathOf(const TranscriptCase& row) {
    return acceptedFolder() / row.situation / (row.name + ".txt");
}

// Whether files are to be made to agree with the programs instead of being compared.
bool isAccepting() {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): there is one thread
    return std::getenv("ACCEPT_TRANSCRIPTS") != nullptr;
}

std::string nameOf(const testing::TestParamInfo<TranscriptCase>& row) {
    return row.param.situation + "_" + row.param.name;
}

std::string nextLine(std::istream& stream) {
    std::string line;
    return std::getline(stream, line) ? line : "(the end)";
}

// The texts must differ.
std::string firstDifference(const std::string& accepted, const std::string& now) {
    std::istringstream acceptedLines(accepted);
    std::istringstream nowLines(now);
    int number = 0;
    std::string acceptedLine;
    std::string nowLine;
    do {
        acceptedLine = nextLine(acceptedLines);
        nowLine = nextLine(nowLines);
        ++number;
    } while (acceptedLine == nowLine && acceptedLines && nowLines);
    return "line " + std::to_string(number) + "\naccepted: " + acceptedLine +
           "\nnow:      " + nowLine + "\n";
}

// The sanitizers' runtime needs descriptors and memory of its own.
bool canRun(const TranscriptCase& row) {
#ifdef __SANITIZE_ADDRESS__
    return row.circumstances.hindrance != noDescriptors && row.circumstances.hindrance != noMemory;
#else
    static_cast<void>(row);
    return true;
#endif
}

std::vector<TranscriptCase> runnableCases() {
    std::vector<TranscriptCase> rows = transcriptCases();
    rows.erase(std::stable_partition(rows.begin(), rows.end(), canRun), rows.end());
    return rows;
}

class Transcript : public testing::TestWithParam<TranscriptCase> {};

TEST_P(Transcript, isAsAccepted) {
    const std::string transcript = TranscriptBench(GetParam()).transcript();
    const fs::path path = pathOf(GetParam());
    if (isAccepting()) {
        fs::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << transcript;
        return;
    }
    std::ifstream file(path, std::ios::binary);
    ASSERT_TRUE(file) << "no accepted transcript " << path << "; now it is\n" << transcript;
    const std::string accepted{std::istreambuf_iterator<char>(file),
                               std::istreambuf_iterator<char>()};
    EXPECT_TRUE(transcript == accepted)
        << path << " differs, first in " << firstDifference(accepted, transcript)
        << "The build target accept_transcripts accepts the difference.";
}

INSTANTIATE_TEST_SUITE_P(Transcripts, Transcript, testing::ValuesIn(runnableCases()), nameOf);

TEST(TranscriptFolder, holdsNoTranscriptWithoutCase) {
    if (isAccepting()) {
        fs::create_directories(acceptedFolder());
    }
    std::set<fs::path> known;
    for (const TranscriptCase& row : transcriptCases()) {
        known.insert(pathOf(row));
    }
    for (const auto& entry : fs::recursive_directory_iterator(acceptedFolder())) {
        if (entry.is_directory() || known.count(entry.path()) != 0) {
            continue;
        }
        if (isAccepting()) {
            fs::remove(entry.path());
        } else {
            ADD_FAILURE() << entry.path() << " belongs to no case";
        }
    }
}

TEST(TranscriptFolder, holdsNoScenarioWithoutCase) {
    std::set<std::string> used;
    for (const TranscriptCase& row : transcriptCases()) {
        used.insert(row.circumstances.scenario);
    }
    for (const auto& entry : fs::directory_iterator(scenarioFolder())) {
        EXPECT_EQ(used.count(entry.path().filename()), 1U) << entry.path();
    }
}

}  // namespace
