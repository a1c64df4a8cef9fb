#include "tests/packaging/ManualPage.h"

#include <fstream>
#include <iterator>
#include <regex>
#include <stdexcept>

namespace vantric_test {

std::string pagePath(const std::string& page) {
    return std::string(MANUAL_PAGES "/") + page;
}

std::string fileContent(const std::string& path) {
    std::ifstream file(path);
    if (!file) {
        throw std::runtime_error("cannot read " + path);
    }
    return std::string(std::istreambuf_iterator<char>(file), {});
}

std::string pageSource(const std::string& page) {
    return fileContent(pagePath(page));
}

std::string pageText(const std::string& page) {
    const Result result = run(mandoc({"-T", "ascii", pagePath(page)}));
    if (!result.status || result.status->raw != 0) {
        throw std::runtime_error("mandoc cannot show " + page);
    }
    // Bold and underlined characters are printed twice, with a backspace between.
    return std::regex_replace(result.output, std::regex("[^\n]\b"), "");
}

Command mandoc(const std::vector<std::string>& arguments) {
    Command command;
    command.program = MANDOC_PATH;
    command.arguments = arguments;
    return command;
}

std::string pageSection(const std::string& page, const std::string& heading) {
    const std::string source = pageSource(page);
    const std::string start = "\n" + heading + "\n";
    const std::size_t begin = source.find(start);
    if (begin == std::string::npos) {
        return "";
    }
    const std::size_t end = source.find("\n.S", begin + start.size() - 1);
    return source.substr(begin + start.size(), end - begin - start.size());
}

std::vector<std::vector<std::string>> allMatches(const std::string& text,
                                                 const std::string& pattern) {
    const std::regex expression(pattern, std::regex::ECMAScript | std::regex::multiline);
    std::vector<std::vector<std::string>> result;
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end;
         ++match) {
        result.emplace_back(std::next(match->begin()), match->end());
    }
    return result;
}

std::set<std::string> wordsIn(const std::string& text, const std::string& pattern) {
    std::set<std::string> result;
    for (const std::vector<std::string>& groups : allMatches(text, pattern)) {
        result.insert(groups.at(0));
    }
    return result;
}

}  // namespace vantric_test
