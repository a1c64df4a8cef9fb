// Examples of commands in documents: a code block whose commands stand behind "$ ", each with what
// it prints below it. The comment above the block says what they meet:
//
//     <!-- run: scenario=sim/scenarios/default.json, seconds=4, client=--setwifi home -->
//     <!-- not run: REASON -->
//
// `scenario` is the server's, or "none"; a vantricprobe that does not end by itself is stopped by
// SIGTERM after `seconds`; `client` are the arguments of a vantricprobe that runs beside a
// vantricsim.
//
// The commands of a block run one after the other in one folder, on a stepped clock that starts on
// 1 January 2030, UTC: every time is exact, and a call that changes something takes a few
// microseconds. They must end with status 0 (or by that SIGTERM) and print exactly what stands
// there, but for blank lines at the end and, of each log record, the line in the client library's
// sources.
#pragma once

#include <chrono>
#include <map>
#include <string>
#include <vector>

#include "tests/docs/Markdown.h"

namespace vantric_test {

struct CommandExample {
    int line;
    std::vector<std::string> words;
    std::string output;
};

struct ExampleCircumstances {
    std::string scenario;             // "none" for no server
    std::chrono::seconds patience{};  // 0 for a command that ends by itself
    std::vector<std::string> client;  // empty for none
};

struct CommandBlock {
    int line;
    ExampleCircumstances circumstances;
    std::vector<CommandExample> commands;
};

// Every block that is to be run. Throws DocumentFault for a block with a command and no comment, or
// with one that is not as above.
std::vector<CommandBlock> commandBlocks(const MarkdownDocument& document);

// The words of a command line; double quotes keep blanks. Throws std::runtime_error for an open
// quote.
std::vector<std::string> wordsOf(const std::string& commandLine);

// Runs a block; what is printed differently or ends badly is a fault each.
Faults exampleFaults(const CommandBlock& block);

}  // namespace vantric_test
