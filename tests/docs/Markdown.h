// The parts of a Markdown document that tests execute or compare: code blocks and tables, each with
// the HTML comment above it that tells how. A page does not show such comments.
#pragma once

#include <string>
#include <vector>

#include "tests/docs/DocumentFault.h"

namespace vantric_test {

struct TextLine {
    int number;  // from 1
    std::string text;
};

struct CodeBlock {
    int line;             // of its first line of code
    std::string comment;  // empty when there is none
    std::string kind;     // what stands behind the opening fence; empty for an indented block
    std::vector<TextLine> lines;
};

struct TableRow {
    int line;
    std::vector<std::string> cells;  // without backticks
};

struct DocumentTable {
    int line;  // of its heading
    std::string comment;
    std::vector<std::string> columns;
    std::vector<TableRow> rows;
};

struct MarkdownDocument {
    std::vector<CodeBlock> blocks;
    std::vector<DocumentTable> tables;
};

// Throws DocumentFault for a comment of several lines, one above neither a block nor a table, and a
// fence without end.
MarkdownDocument parseMarkdown(const std::string& text);

// The content of a file of the source folder. Throws std::runtime_error when it cannot be read.
std::string documentText(const std::string& path);

}  // namespace vantric_test
