// Runs the commands that the documents show and compares what they print.
//
// An example is an indented block in which each command stands after "$ " and its output below it.
// The comment above the block says how to run it:
//
//     <!-- run: scenario=sim/scenarios/default.json, seconds=4, client=--setwifi home -->
//
// `scenario` is the server's, or "none". After `seconds`, SIGTERM stops a vantricprobe that does
// not end by itself. `client` holds the arguments of a vantricprobe that runs beside a vantricsim.
// `status` is the exit status of a vantricctl, if it is not 0; its errors belong to its output
// then. Commands are vantricprobe, vantricsim, vantricctl, cat and od, after settings of
// environment variables.
//
// The commands of a block run one after the other in a folder that has `sim` and `tests`, with an
// empty /dev/shm, on a stepped clock that starts on 1 January 2030, UTC, and on which every call
// takes a few microseconds. Each must end with status 0 (or by that SIGTERM) without errors, and
// print the shown text, except for blank lines at the end and line numbers of the client library's
// log records.
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <regex>
#include <set>

#include "tests/support/ChildProcess.h"
#include "tests/support/LogSettings.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/transcripts/SteppedClock.h"

namespace {

using namespace vantric_test;
using Words = std::vector<std::string>;

struct Example {
    int line;
    std::string command;
    std::string output;
};

struct Block {
    std::map<std::string, std::string> circumstances;  // the settings of the comment
    std::vector<Example> examples;
};

std::map<std::string, std::string> settingsOf(const std::string& text) {
    static const std::regex form("(scenario|seconds|client|status)=([^,]+)(?:, |$)");
    std::map<std::string, std::string> settings;
    for (std::sregex_iterator match(text.begin(), text.end(), form), end; match != end; ++match) {
        settings[(*match)[1]] = (*match)[2];
    }
    return settings;
}

std::vector<Block> blocksOf(const std::string& path) {
    static const std::regex comment("<!-- run: (.+) -->");
    std::ifstream document(SOURCE_FOLDER "/" + path);
    std::vector<Block> blocks;
    std::smatch match;
    bool isInBlock = false;
    int number = 0;
    for (std::string line; std::getline(document, line);) {
        ++number;
        const bool isIndented = line.rfind("    ", 0) == 0;
        const bool isCommand = line.rfind("    $ ", 0) == 0;
        if (std::regex_match(line, match, comment)) {
            blocks.push_back({settingsOf(match[1]), {}});
            isInBlock = true;
        } else if (!isIndented && !line.empty()) {
            isInBlock = false;
        } else if (isCommand && isInBlock) {
            blocks.back().examples.push_back({number, line.substr(6), ""});
        } else if (isCommand) {
            ADD_FAILURE() << path << ":" << number << ": no comment says how to run this";
        } else if (isInBlock && !blocks.back().examples.empty()) {
            blocks.back().examples.back().output += (isIndented ? line.substr(4) : "") + "\n";
        }
    }
    return blocks;
}

// Double quotes keep blanks.
Words wordsOf(const std::string& text) {
    static const std::regex form("(?:[^ \"]|\"[^\"]*\")+");
    static const std::regex quotes("\"");
    Words words;
    for (std::sregex_iterator match(text.begin(), text.end(), form), end; match != end; ++match) {
        words.push_back(std::regex_replace(match->str(), quotes, ""));
    }
    return words;
}

std::string comparable(const std::string& output) {
    static const std::regex sourceLine(R"((\| +ModemClientC?\|)[ 0-9]{4}[0-9]\|)");
    std::string text = std::regex_replace(output, sourceLine, "$1 LINE|");
    text.erase(text.find_last_not_of('\n') + 1);
    return text;
}

// Runs the commands of one block. While it lives, this process works in the block's folder.
class Stage {
  public:
    explicit Stage(const Block& block) : circumstances_(block.circumstances) {
        for (const auto& entry : std::filesystem::directory_iterator("/dev/shm")) {
            std::filesystem::remove_all(entry.path());
        }
        forgetLogSettings();
        for (const char* name : {"sim", "tests"}) {
            std::filesystem::create_symlink(std::string(SOURCE_FOLDER "/") + name, folder_ / name);
        }
        std::filesystem::current_path(folder_.path());
        // A client that loses time at every unlock has durations above zero.
        clock_.pauseAtUnlock(std::chrono::microseconds(2));
        const std::string scenario = circumstances_.at("scenario");
        if (scenario != "none") {
            server_ = start({VANTRICSIM_PATH, {"--scenario", scenario}}, clockServer);
            clock_.runUntil(clock_.now());
        }
    }

    ~Stage() {
        std::error_code ignored;
        std::filesystem::current_path(folderBefore_, ignored);
    }
    Stage& operator=(Stage&&) = delete;

    std::string outputOf(const std::string& commandLine) {
        static const std::regex setting("([A-Z_]+)=(.*)");
        Words words = wordsOf(commandLine);
        Command command;
        for (std::smatch match; std::regex_match(words.at(0), match, setting);) {
            command.environment[match[1]] = match[2];
            words.erase(words.begin());
        }
        const std::string name = words.at(0);
        command.commandName = name;
        command.arguments.assign(words.begin() + 1, words.end());
        if (name == "vantricprobe") {
            command.program = VANTRICPROBE_PATH;
            return outputOfClient(command);
        }
        if (name == "vantricsim") {
            command.program = VANTRICSIM_PATH;
            return outputOfServer(command);
        }
        if (name == "vantricctl") {
            command.program = VANTRICCTL_PATH;
            expectedStatus_ =
                circumstances_.count("status") != 0 ? std::stoi(circumstances_.at("status")) : 0;
            return outputOfClient(command);
        }
        expectedStatus_ = 0;
        command.program = name == "od" ? "/usr/bin/od" : name == "cat" ? "/bin/cat" : "";
        const Result result = run(command);
        return checked(result.status, result.output, result.errors);
    }

  private:
    using Process = std::unique_ptr<ChildProcess>;

    Process start(const Command& command, ClockParticipant participant) {
        auto process = std::make_unique<ChildProcess>(clock_.with(watched(command), participant));
        clock_.admit(*process, participant);
        return process;
    }

    void runUntilEndOf(const Process& process, std::chrono::nanoseconds time) {
        while (clock_.now() < time && !process->wait(0ms)) {
            clock_.runUntil(time);
        }
    }

    std::string outputOfClient(const Command& command) {
        const bool isStopped = circumstances_.count("seconds") != 0;
        const auto patience =
            std::chrono::seconds(isStopped ? std::stol(circumstances_.at("seconds")) : 3600);
        const Process client = start(command, clockClient);
        runUntilEndOf(client, clock_.now() + patience);
        if (isStopped && !client->wait(0ms)) {
            client->sendSignal(SIGTERM);
            client->wait();
            clock_.dismiss(clockClient);
        }
        return checked(client->wait(0ms), client->output(), client->errors());
    }

    std::string outputOfServer(const Command& command) {
        server_ = start(command, clockServer);
        clock_.runUntil(clock_.now());
        Process client;
        if (circumstances_.count("client") != 0) {
            const Words arguments = wordsOf(circumstances_.at("client"));
            client = start({VANTRICPROBE_PATH, arguments}, clockClient);
        }
        runUntilEndOf(server_, clock_.now() + std::chrono::hours(1));
        return checked(server_->wait(0ms), server_->output(), server_->errors());
    }

    std::string checked(const std::optional<ExitStatus>& status, const std::string& output,
                        const std::string& errors) const {
        const bool mayBeStopped = circumstances_.count("seconds") != 0;
        const bool hasEndedWell = status && (status->code() == expectedStatus_ ||
                                             (mayBeStopped && status->signal() == SIGTERM));
        return hasEndedWell ? output + errors : "ended badly or not at all\n" + output + errors;
    }

    const std::map<std::string, std::string> circumstances_;
    const std::filesystem::path folderBefore_ = std::filesystem::current_path();
    TemporaryFolder folder_;
    SteppedClock clock_{[] {}};
    Process server_;
    int expectedStatus_ = 0;
};

// The documents with examples.
const std::set<std::string>& documents() {
    static const std::set<std::string> paths = {
        "README.md",          "docs/logging.md",      "docs/protocol.md", "docs/troubleshooting.md",
        "docs/vantricctl.md", "docs/vantricprobe.md", "sim/README.md"};
    return paths;
}

class CommandExamples : public testing::TestWithParam<std::string> {};

TEST_P(CommandExamples, printWhatTheDocumentShows) {
    const std::vector<Block> blocks = blocksOf(GetParam());
    EXPECT_FALSE(blocks.empty());
    for (const Block& block : blocks) {
        Stage stage(block);
        for (const Example& example : block.examples) {
            EXPECT_EQ(comparable(stage.outputOf(example.command)), comparable(example.output))
                << GetParam() << ":" << example.line;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Of, CommandExamples, testing::ValuesIn(documents()), [](const auto& path) {
    return std::regex_replace(path.param, std::regex("[^A-Za-z]"), "_");
});

TEST(CommandExamples, areInNoDocumentWhoseExamplesAreNotRun) {
    for (const auto& entry : std::filesystem::directory_iterator(SOURCE_FOLDER "/docs")) {
        const std::string path = "docs/" + entry.path().filename().string();
        if (entry.path().extension() == ".md" && documents().count(path) == 0) {
            EXPECT_TRUE(blocksOf(path).empty()) << path;
        }
    }
}

}  // namespace
