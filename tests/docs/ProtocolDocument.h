// All that tests check of docs/protocol.md.
#pragma once

#include "tests/docs/Markdown.h"

namespace vantric_test {

constexpr const char* protocolPath = "docs/protocol.md";

// Replays a block of any kind. Throws DocumentFault.
void checkBlock(const CodeBlock& block);

// Tables that differ, have no known name, or are missing.
Faults tableFaults(const MarkdownDocument& document);

// Of the whole document: blocks and tables that do not hold, have no known form, or are missing.
Faults protocolFaults(const std::string& text);

}  // namespace vantric_test
