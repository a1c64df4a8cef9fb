// The manual pages, as their authors wrote them and as a terminal shows them.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "tests/support/ChildProcess.h"

namespace vantric_test {

// The path of a page such as "vantricprobe.1".
std::string pagePath(const std::string& page);

std::string fileContent(const std::string& path);

// The mdoc text of a page.
std::string pageSource(const std::string& page);

// What a terminal shows of a page, without bold face and underlining.
std::string pageText(const std::string& page);

Command mandoc(const std::vector<std::string>& arguments);

// The lines of a page's source from the heading (a whole line) to the next one of any kind; without
// a line behind the heading when there is no such heading.
std::string pageSection(const std::string& page, const std::string& heading);

// For each match of `pattern` in `text`, what its groups caught. "^" and "$" are ends of lines.
std::vector<std::vector<std::string>> allMatches(const std::string& text,
                                                 const std::string& pattern);

// The first group of each match.
std::set<std::string> wordsIn(const std::string& text, const std::string& pattern);

}  // namespace vantric_test
