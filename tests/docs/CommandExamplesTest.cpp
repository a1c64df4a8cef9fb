// What the documents show of the programs' output is what the programs print.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/docs/CommandExamples.h"

namespace {

using vantric_test::collect;
using vantric_test::CommandBlock;
using vantric_test::commandBlocks;
using vantric_test::CommandExample;
using vantric_test::DocumentFault;
using vantric_test::documentText;
using vantric_test::exampleFaults;
using vantric_test::Faults;
using vantric_test::parseMarkdown;

std::vector<CommandBlock> blocksOf(const std::string& path) {
    return commandBlocks(parseMarkdown(documentText(path)));
}

void expectRight(const std::string& path) {
    Faults faults;
    collect(faults, [&] {
        for (const CommandBlock& block : blocksOf(path)) {
            for (const std::string& fault : exampleFaults(block)) {
                faults.push_back(fault);
            }
        }
    });
    EXPECT_TRUE(faults.empty()) << path << ", " << vantric_test::joined(faults);
}

TEST(CommandExamples, ofTheReadmePrintWhatItSays) {
    expectRight("README.md");
}

TEST(CommandExamples, ofTheSimulatorPrintWhatItsReadmeSays) {
    expectRight("sim/README.md");
}

TEST(CommandExamples, ofTheDocumentsPrintWhatTheySay) {
    for (const auto& entry : std::filesystem::directory_iterator(SOURCE_FOLDER "/docs")) {
        if (entry.path().extension() == ".md") {
            expectRight("docs/" + entry.path().filename().string());
        }
    }
}

TEST(CommandExamples, areInEveryDocumentThatShowsThePrograms) {
    for (const char* path : {"README.md", "sim/README.md", "docs/logging.md"}) {
        EXPECT_FALSE(blocksOf(path).empty()) << path;
    }
}

// Every example of the README with another last character.
TEST(CommandExamples, changedOutputIsNoticed) {
    for (CommandBlock block : blocksOf("README.md")) {
        std::size_t changes = 0;
        for (CommandExample& command : block.commands) {
            const std::size_t last = command.output.find_last_not_of(" \n");
            if (last != std::string::npos) {
                command.output[last] = '#';
                ++changes;
            }
        }
        EXPECT_EQ(exampleFaults(block).size(), changes) << "line " << block.line;
    }
}

TEST(CommandExamples, changedCircumstancesAreNoticed) {
    const std::string text =
        "<!-- run: scenario=sim/scenarios/no_wifi_configured.json -->\n"
        "    $ vantricprobe --statuscapi\n"
        "    Carrier:\n";
    EXPECT_EQ(exampleFaults(commandBlocks(parseMarkdown(text)).at(0)).size(), 1U);
}

TEST(CommandExamples, withoutACommentAreFaulty) {
    EXPECT_THROW(commandBlocks(parseMarkdown("    $ ls\n")), DocumentFault);
    EXPECT_THROW(commandBlocks(parseMarkdown("```\nfile\n$ ls\n```\n")), DocumentFault);
    EXPECT_THROW(commandBlocks(parseMarkdown("<!-- not run: -->\n    $ ls\n")), DocumentFault);
    EXPECT_THROW(commandBlocks(parseMarkdown("<!-- skip -->\n    $ ls\n")), DocumentFault);
}

TEST(CommandExamples, withAnUnknownCommentAreFaulty) {
    for (const char* comment :
         {"run: scenari=none", "run: none", "run: seconds=3", "run: scenario=none seconds=3"}) {
        const std::string text = std::string("<!-- ") + comment + " -->\n    $ ls\n";
        Faults faults;
        collect(faults, [&] {
            for (const CommandBlock& block : commandBlocks(parseMarkdown(text))) {
                faults = exampleFaults(block);
            }
        });
        EXPECT_FALSE(faults.empty()) << comment;
    }
}

TEST(CommandExamples, commentsWithoutBlockAreFaulty) {
    EXPECT_THROW(parseMarkdown("<!-- run: scenario=none -->\n\nText\n"), DocumentFault);
    EXPECT_THROW(parseMarkdown("<!-- run: scenario=none -->\n"), DocumentFault);
    EXPECT_THROW(parseMarkdown("<!-- run:\nscenario=none -->\n    $ ls\n"), DocumentFault);
}

TEST(CommandExamples, ofAnotherProgramAreFaulty) {
    const CommandBlock block = {1, {"none", {}, {}}, {{1, {"ls"}, ""}}};
    EXPECT_EQ(exampleFaults(block).size(), 1U);
}

}  // namespace
