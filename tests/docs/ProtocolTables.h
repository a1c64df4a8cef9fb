// The tables of the protocol's document against the headers and the real objects.
#pragma once

#include <string>
#include <vector>

#include "tests/docs/Markdown.h"

namespace vantric_test {

// What the document must have, each once: the comment above a table is "table: NAME".
std::vector<std::string> tableNames();

// Throws DocumentFault when the table is of no known name or differs.
void compareTable(const DocumentTable& table);

// Whether a table tells something that can be compared and so needs a name.
bool needsName(const DocumentTable& table);

}  // namespace vantric_test
