#include "tests/docs/CommandExamples.h"

#include <algorithm>
#include <regex>
#include <sstream>

#include "tests/docs/ExampleBench.h"

namespace vantric_test {

namespace {

constexpr const char* prompt = "$ ";

bool isCommand(const TextLine& line) {
    return line.text.rfind(prompt, 0) == 0;
}

void set(ExampleCircumstances& circumstances, const std::string& key, const std::string& value,
         int line) {
    if (key == "scenario") {
        circumstances.scenario = value;
    } else if (key == "seconds") {
        circumstances.patience = std::chrono::seconds(std::stol(value));
    } else if (key == "client") {
        circumstances.client = wordsOf(value);
    } else {
        throw DocumentFault(line, "unknown in a run: " + key);
    }
}

ExampleCircumstances circumstancesOf(const CodeBlock& block, const std::string& text) {
    static const std::regex setting("([a-z]+)=([^,]+)");
    static const std::regex separator(", ");
    ExampleCircumstances result;
    const std::sregex_token_iterator settings(text.begin(), text.end(), separator, -1);
    for (auto entry = settings; entry != std::sregex_token_iterator(); ++entry) {
        const std::string word = *entry;
        std::smatch match;
        if (!std::regex_match(word, match, setting)) {
            throw DocumentFault(block.line, "not a setting of a run: " + word);
        }
        set(result, match[1], match[2], block.line);
    }
    if (result.scenario.empty()) {
        throw DocumentFault(block.line, "a run without a scenario");
    }
    return result;
}

std::vector<CommandExample> commandsOf(const CodeBlock& block) {
    std::vector<CommandExample> commands;
    for (const TextLine& line : block.lines) {
        if (isCommand(line)) {
            commands.push_back({line.number, wordsOf(line.text.substr(2)), ""});
        } else if (commands.empty()) {
            throw DocumentFault(line.number, "output without a command");
        } else {
            commands.back().output += line.text + "\n";
        }
    }
    return commands;
}

// Where in the client library's sources a record stems from may change at any time.
std::string withoutSourceLines(const std::string& output) {
    static const std::regex number(R"((\| +ModemClientC?\|)[ 0-9]{4}[0-9]\|)");
    return std::regex_replace(output, number, "$1 LINE|");
}

std::string comparable(const std::string& output) {
    std::string text = withoutSourceLines(output);
    text.erase(text.find_last_not_of('\n') + 1);
    return text;
}

}  // namespace

std::vector<std::string> wordsOf(const std::string& commandLine) {
    std::vector<std::string> words;
    bool isQuoted = false;
    bool isInWord = false;
    for (const char character : commandLine) {
        const bool isSeparator = character == ' ' && !isQuoted;
        if (!isSeparator && !isInWord) {
            words.emplace_back();
        }
        isInWord = !isSeparator;
        if (character == '"') {
            isQuoted = !isQuoted;
        } else if (!isSeparator) {
            words.back() += character;
        }
    }
    if (isQuoted) {
        throw std::runtime_error("an open quote: " + commandLine);
    }
    return words;
}

std::vector<CommandBlock> commandBlocks(const MarkdownDocument& document) {
    static const std::regex notRun("not run: .+");
    static const std::regex run("run: (.+)");
    std::vector<CommandBlock> result;
    for (const CodeBlock& block : document.blocks) {
        std::smatch match;
        if (std::regex_match(block.comment, match, run)) {
            result.push_back({block.line, circumstancesOf(block, match[1]), commandsOf(block)});
        } else if (std::any_of(block.lines.begin(), block.lines.end(), isCommand) &&
                   !std::regex_match(block.comment, notRun)) {
            throw DocumentFault(block.line, "a command that nothing is said about");
        }
    }
    return result;
}

Faults exampleFaults(const CommandBlock& block) {
    Faults faults;
    collect(faults, [&] {
        ExampleBench bench(block.circumstances);
        for (const CommandExample& command : block.commands) {
            collect(faults, [&] {
                const std::string output = bench.run(command.words);
                if (comparable(output) != comparable(command.output)) {
                    throw DocumentFault(command.line, "prints\n" + output);
                }
            });
        }
    });
    return faults;
}

}  // namespace vantric_test
