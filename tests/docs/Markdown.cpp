#include "tests/docs/Markdown.h"

#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>

namespace vantric_test {

namespace {

constexpr const char* fence = "```";
constexpr const char* indentation = "    ";
constexpr const char* commentStart = "<!--";

bool startsWith(const std::string& text, const std::string& beginning) {
    return text.rfind(beginning, 0) == 0;
}

std::vector<TextLine> linesOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<TextLine> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back({static_cast<int>(lines.size()) + 1, line});
    }
    return lines;
}

std::vector<std::string> cellsOf(const std::string& row) {
    static const std::regex blanks("^ +| +$|`");
    std::istringstream stream(row.substr(1));
    std::vector<std::string> cells;
    for (std::string cell; std::getline(stream, cell, '|');) {
        cells.push_back(std::regex_replace(cell, blanks, ""));
    }
    return cells;
}

class Parser {
  public:
    explicit Parser(const std::string& text) : lines_(linesOf(text)) {}

    MarkdownDocument parse() {
        bool isBehindProse = false;
        while (next_ < lines_.size()) {
            const std::string& text = lines_[next_].text;
            if (startsWith(text, commentStart)) {
                takeComment();
            } else if (startsWith(text, fence)) {
                takeFencedBlock();
            } else if (startsWith(text, indentation) && !isBehindProse) {
                takeIndentedBlock();
            } else if (startsWith(text, "|")) {
                takeTable();
            } else {
                isBehindProse = !text.empty();
                if (isBehindProse) {
                    requireNoComment();
                }
                ++next_;
            }
        }
        requireNoComment();
        return document_;
    }

  private:
    void takeComment() {
        static const std::regex form("<!-- (.+) -->");
        requireNoComment();
        std::smatch match;
        if (!std::regex_match(lines_[next_].text, match, form)) {
            throw DocumentFault(lines_[next_].number, "not a comment on one line");
        }
        comment_ = match[1];
        commentLine_ = lines_[next_].number;
        ++next_;
    }

    void takeFencedBlock() {
        const int opening = lines_[next_].number;
        CodeBlock block = {opening + 1, usedComment(), lines_[next_].text.substr(3), {}};
        for (++next_; next_ < lines_.size() && lines_[next_].text != fence; ++next_) {
            block.lines.push_back(lines_[next_]);
        }
        if (next_ == lines_.size()) {
            throw DocumentFault(opening, "a fence without end");
        }
        ++next_;
        document_.blocks.push_back(block);
    }

    void takeIndentedBlock() {
        CodeBlock block = {lines_[next_].number, usedComment(), "", {}};
        for (; next_ < lines_.size(); ++next_) {
            const TextLine& line = lines_[next_];
            if (startsWith(line.text, indentation)) {
                block.lines.push_back({line.number, line.text.substr(4)});
            } else if (line.text.empty()) {
                block.lines.push_back(line);
            } else {
                break;
            }
        }
        while (block.lines.back().text.empty()) {
            block.lines.pop_back();
        }
        document_.blocks.push_back(block);
    }

    void takeTable() {
        DocumentTable table = {
            lines_[next_].number, usedComment(), cellsOf(lines_[next_].text), {}};
        // The line between the heading and the rows draws the columns only.
        for (next_ += 2; next_ < lines_.size() && startsWith(lines_[next_].text, "|"); ++next_) {
            table.rows.push_back({lines_[next_].number, cellsOf(lines_[next_].text)});
            if (table.rows.back().cells.size() != table.columns.size()) {
                throw DocumentFault(lines_[next_].number, "not as many cells as columns");
            }
        }
        document_.tables.push_back(table);
    }

    void requireNoComment() const {
        if (!comment_.empty()) {
            throw DocumentFault(commentLine_, "a comment above neither a block nor a table");
        }
    }

    std::string usedComment() {
        std::string result;
        result.swap(comment_);
        return result;
    }

    const std::vector<TextLine> lines_;
    std::size_t next_ = 0;
    std::string comment_;
    int commentLine_ = 0;
    MarkdownDocument document_;
};

}  // namespace

MarkdownDocument parseMarkdown(const std::string& text) {
    return Parser(text).parse();
}

std::string documentText(const std::string& path) {
    std::ifstream file(std::string(SOURCE_FOLDER "/") + path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read " + path);
    }
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace vantric_test
