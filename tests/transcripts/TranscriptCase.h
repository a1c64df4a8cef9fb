// What a transcript records: one run of vantricprobe or vantricctl, and the circumstances that it
// meets.
#pragma once

#include <chrono>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/transcripts/Hindrance.h"

namespace vantric_test {

// A terminal is read, too; it is the client's standard error as well.
enum class ClientOutput { Read, Terminal, Closed, ReaderGone, ReaderGoneUnsignalled, FullDevice };

struct Circumstances {
    // A file of tests/transcripts/scenarios or sim/scenarios; without one there is no server while
    // the client runs.
    std::string scenario;
    ClientOutput output = ClientOutput::Read;
    Hindrance (*hindrance)() = noHindrance;
    // The client is stopped then, by SIGTERM.
    std::chrono::seconds patience = std::chrono::seconds(1000);
    const char* logLevel = "fatal";
    // For networks whose order the program does not promise.
    bool networksAreSorted = false;
};

struct TranscriptCase {
    std::string situation;               // the folder of the transcript
    std::string name;                    // its file, without extension
    std::vector<std::string> arguments;  // after argv[0]
    Circumstances circumstances;
    std::string commandName = "vantricprobe";  // argv[0]
    std::string program = VANTRICPROBE_PATH;
};

inline std::ostream& operator<<(std::ostream& stream, const TranscriptCase& row) {
    return stream << row.situation << '/' << row.name;
}

// All of them, in the order of the situations.
std::vector<TranscriptCase> transcriptCases();

}  // namespace vantric_test
