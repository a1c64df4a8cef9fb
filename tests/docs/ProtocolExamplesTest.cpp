// docs/protocol.md against the real transport: every example and every table of offsets, sizes and
// commands. The second half edits the document and expects that to be noticed.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <regex>

#include "tests/docs/ProtocolDocument.h"

namespace {

using vantric_test::CodeBlock;
using vantric_test::Faults;
using vantric_test::protocolFaults;

std::string protocolText() {
    return vantric_test::documentText(vantric_test::protocolPath);
}

bool isNoticed(const CodeBlock& block) {
    try {
        vantric_test::checkBlock(block);
        return false;
    } catch (const std::exception&) {
        return true;
    }
}

// Operations without effect tell the reader something and change nothing.
bool hasEffect(const std::string& line) {
    static const std::regex withoutEffect("|.*: (dropped|nothing)");
    return !std::regex_match(line, withoutEffect);
}

// A call's arguments need not make a difference, what it does must.
std::size_t firstRelevant(const CodeBlock& block, const std::string& line) {
    return block.kind == "calls" ? line.find(')') : 0;
}

// Words to the reader stand behind an arrow.
std::size_t relevantEnd(const std::string& line) {
    return std::min(line.find("  <- "), line.size());
}

// Another letter for a letter, another digit for a digit.
char otherThan(char character) {
    const bool isLast = character == '9' || character == 'z' || character == 'Z';
    return isLast ? static_cast<char>(character - 1) : static_cast<char>(character + 1);
}

TEST(ProtocolDocument, holdsToTheByte) {
    const Faults faults = protocolFaults(protocolText());
    EXPECT_TRUE(faults.empty()) << vantric_test::joined(faults);
}

// Letters and digits one by one, though not all of them: that would take a minute.
TEST(ProtocolDocument, changedCharactersOfExamplesAreNoticed) {
    constexpr std::size_t stride = 5;
    std::size_t position = 0;
    std::size_t changes = 0;
    const auto document = vantric_test::parseMarkdown(protocolText());
    for (const CodeBlock& original : document.blocks) {
        for (std::size_t line = 0; line < original.lines.size(); ++line) {
            const std::string& text = original.lines[line].text;
            if (!hasEffect(text)) {
                continue;
            }
            for (std::size_t index = 0; index < relevantEnd(text); ++index) {
                if (index < firstRelevant(original, text) ||
                    std::isalnum(static_cast<unsigned char>(text[index])) == 0 ||
                    ++position % stride != 0) {
                    continue;
                }
                CodeBlock changed = original;
                char& character = changed.lines[line].text[index];
                character = otherThan(character);
                EXPECT_TRUE(isNoticed(changed)) << "line " << original.lines[line].number
                                                << ", not noticed: " << changed.lines[line].text;
                ++changes;
            }
        }
    }
    EXPECT_GT(changes, 0U);
}

// The lines of the other kinds stand for themselves.
TEST(ProtocolDocument, missingLinesOfRingsAndRecordsAreNoticed) {
    std::size_t changes = 0;
    const auto document = vantric_test::parseMarkdown(protocolText());
    for (const CodeBlock& original : document.blocks) {
        if (original.kind == "calls" || original.kind == "lock") {
            continue;
        }
        for (std::size_t line = 0; line < original.lines.size(); ++line) {
            if (!hasEffect(original.lines[line].text)) {
                continue;
            }
            CodeBlock changed = original;
            changed.lines.erase(changed.lines.begin() + static_cast<std::ptrdiff_t>(line));
            EXPECT_TRUE(isNoticed(changed)) << "line " << original.lines[line].number;
            ++changes;
        }
    }
    EXPECT_GT(changes, 0U);
}

TEST(ProtocolDocument, changedNumbersOfTablesAreNoticed) {
    static const std::regex numberedRow(R"(\| (?:`[a-zA-Z]+` \| )?([0-9]+) \|.*)");
    const std::string original = protocolText();
    std::size_t changes = 0;
    std::size_t start = 0;
    while (start < original.size()) {
        const std::size_t end = original.find('\n', start);
        const std::string row = original.substr(start, end - start);
        std::smatch match;
        if (std::regex_match(row, match, numberedRow)) {
            std::string changed = original;
            char& digit = changed[start + static_cast<std::size_t>(match.position(1))];
            digit = otherThan(digit);
            const auto document = vantric_test::parseMarkdown(changed);
            EXPECT_FALSE(vantric_test::tableFaults(document).empty()) << row;
            ++changes;
        }
        start = end + 1;
    }
    EXPECT_GT(changes, 0U);
}

TEST(ProtocolDocument, withoutBlocksIsFaulty) {
    const std::string text =
        std::regex_replace(protocolText(), std::regex("```[^`]*```\n"), std::string());
    EXPECT_EQ(protocolFaults(text).size(), 7U);
}

TEST(ProtocolDocument, withoutNamesOfTablesIsFaulty) {
    const std::string text =
        std::regex_replace(protocolText(), std::regex("<!-- table: .* -->\n"), std::string());
    EXPECT_GE(protocolFaults(text).size(), 11U);
}

TEST(ProtocolDocument, blocksOfUnknownKindAreFaulty) {
    EXPECT_EQ(protocolFaults(protocolText() + "\n```rings\nattach producer\n```\n").size(), 1U);
    EXPECT_EQ(protocolFaults(protocolText() + "\n    attach producer\n").size(), 1U);
}

TEST(ProtocolDocument, operationsOfUnknownFormAreFaulty) {
    for (const char* line : {"attach producers", "enqueue", "enqueue 7 home", "dequeue", "wait",
                             "detach producer", "    0  01"}) {
        const CodeBlock block = {1, "", "ring", {{1, line}}};
        EXPECT_TRUE(isNoticed(block)) << line;
    }
}

}  // namespace
