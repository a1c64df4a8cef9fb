// The manual pages are well-formed, and name all options, files, keys and functions that there are
// and no others; the completion has all options.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <set>

#include "tests/support/ChildProcess.h"
#include "tests/support/PublishedServer.h"

namespace {

using namespace vantric_test;

using Words = std::set<std::string>;

// What the group of `pattern` catches in each of its matches in `text`. "^" and "$" are ends of
// lines.
Words wordsIn(const std::string& text, const std::string& pattern) {
    const std::regex form(pattern, std::regex::ECMAScript | std::regex::multiline);
    return Words(std::sregex_token_iterator(text.begin(), text.end(), form, 1), {});
}

std::string contentOf(const std::string& path) {
    std::ifstream file(path);
    EXPECT_TRUE(file.is_open()) << path;
    return std::string(std::istreambuf_iterator<char>(file), {});
}

std::string pathOf(const std::string& page) {
    return SOURCE_FOLDER "/packaging/man/" + page;
}

std::string sourceOf(const std::string& page) {
    return contentOf(pathOf(page));
}

// A page's source from a heading to the next one. Throws std::out_of_range without the heading.
std::string sectionOf(const std::string& page, const std::string& heading) {
    const std::string source = sourceOf(page);
    const std::size_t begin = source.find("\n.Sh " + heading + "\n");
    return source.substr(begin, source.find("\n.Sh ", begin + 1) - begin);
}

Result outputOf(const std::string& program, const std::vector<std::string>& arguments) {
    return run({program, arguments});
}

class EveryPage : public testing::TestWithParam<const char*> {};

INSTANTIATE_TEST_SUITE_P(Manual, EveryPage,
                         testing::Values("vantricprobe.1", "vantricsim.1", "vantricctl.1",
                                         "vantric.3", "vantric-protocol.7"),
                         [](const auto& page) {
                             return std::regex_replace(page.param, std::regex("[^a-z]"), "");
                         });

// mandoc cannot find the pages of other packages where these are not installed.
TEST_P(EveryPage, isFreeOfMandocsComplaints) {
    const std::string all =
        outputOf(MANDOC_PATH, {"-T", "lint", "-W", "style", pathOf(GetParam())}).output;
    EXPECT_EQ(wordsIn(all, "^(?!.*STYLE: referenced manual not found)(.+)$"), Words());
}

TEST_P(EveryPage, refersOnlyToPagesThatExist) {
    for (const std::string& page : wordsIn(sourceOf(GetParam()), "^\\.Xr (vantric[a-z-]* \\d)")) {
        sourceOf(std::regex_replace(page, std::regex(" "), "."));
    }
}

Words optionsIn(const std::string& text) {
    return wordsIn(text, "Fl (-?[A-Za-z][A-Za-z-]*)");
}

// The list of a page explains the options, its synopsis shows them, and no other text on the page
// names another.
void expectExactly(const std::string& page, const Words& options) {
    Words explained;
    for (const std::string& item : wordsIn(sourceOf(page), "^\\.It (Fl .*)$")) {
        explained.merge(optionsIn(item));
    }
    EXPECT_EQ(explained, options);
    EXPECT_EQ(optionsIn(sectionOf(page, "SYNOPSIS")), options);
    EXPECT_EQ(optionsIn(sourceOf(page)), options);
}

// Every option that a completion offers stands on a line of its own.
Words completedOptions(const std::string& program) {
    return wordsIn(contentOf(SOURCE_FOLDER "/packaging/completion/" + program),
                   "^ +-(-?[A-Za-z][A-Za-z-]*)(?:$|' --)");
}

TEST(VantricprobePage, hasTheOptionsOfTheProgramAndSoHasTheCompletion) {
    const std::string source = contentOf(SOURCE_FOLDER "/client/CommandLine.cpp");
    const Words options = wordsIn(source, "^    \\{\"-(\\S+)\",");
    expectExactly("vantricprobe.1", options);
    EXPECT_EQ(completedOptions("vantricprobe"), options);
}

TEST(VantricprobePage, namesTheFilesThatARunLeaves) {
    outputOf(VANTRICPROBE_PATH, {"--availablewifi"});
    Words files;
    for (const std::string& name : sharedMemoryNames()) {
        files.insert("/dev/shm/" + name);
    }
    EXPECT_EQ(wordsIn(sourceOf("vantricprobe.1"), "^\\.It Pa (/dev/shm/\\S+)"), files);
}

TEST(VantricprobePage, namesTheVariablesAndValuesOfTheLog) {
    const std::string source = contentOf(SOURCE_FOLDER "/CoreMisc/LogInterface/LogConfig.cpp");
    const std::string section = sectionOf("vantricprobe.1", "ENVIRONMENT");
    EXPECT_EQ(wordsIn(section, "^\\.It Ev (\\w+)"), wordsIn(source, "\"(VRAX_\\w+)\""));
    for (const std::string& name : wordsIn(source, "\"([a-z_]+)\"")) {
        EXPECT_NE(section.find(name), std::string::npos) << name;
    }
}

TEST(VantricprobePage, quotesDiagnosticsThatTheProgramHas) {
    const std::string program = contentOf(VANTRICPROBE_PATH);
    const Words texts = wordsIn(sectionOf("vantricprobe.1", "DIAGNOSTICS"), "^\\.It (.*)$");
    ASSERT_FALSE(texts.empty());
    for (const std::string& text : texts) {
        EXPECT_NE(program.find(text), std::string::npos) << text;
    }
}

Words optionsInHelp(const std::string& program, std::vector<std::string> arguments) {
    arguments.emplace_back("--help");
    Words options;
    for (const std::string& names : wordsIn(outputOf(program, arguments).output, "^  (-\\S+)")) {
        options.merge(wordsIn(names, "(?:^|,)-(-?[a-z-]+)"));
    }
    return options;
}

TEST(VantricctlPage, hasTheOptionsOfAllCommandsAndSoHasTheCompletion) {
    Words options = optionsInHelp(VANTRICCTL_PATH, {});
    const Words commands =
        wordsIn(outputOf(VANTRICCTL_PATH, {"--help"}).output, "^  ([a-z][a-z-]+) ");
    ASSERT_EQ(commands.size(), 8U);
    for (const std::string& command : commands) {
        options.merge(optionsInHelp(VANTRICCTL_PATH, {command}));
        EXPECT_NE(sourceOf("vantricctl.1").find("\n.It Cm " + command + "\n"), std::string::npos)
            << command;
    }
    expectExactly("vantricctl.1", options);
    EXPECT_EQ(completedOptions("vantricctl"), options);
}

TEST(VantricsimPage, hasTheOptionsOfTheProgramAndSoHasTheCompletion) {
    const Words options = optionsInHelp(VANTRICSIM_PATH, {});
    expectExactly("vantricsim.1", options);
    EXPECT_EQ(completedOptions("vantricsim"), options);
}

TEST(VantricsimPage, namesEveryKeyAndEventOfAScenario) {
    Words named;
    for (const std::string& line : wordsIn(sourceOf("vantricsim.1"), "^\\.(?:It )?Cm (.*)$")) {
        named.merge(wordsIn(line, "(\\w+)"));
    }
    Words keys = wordsIn(contentOf(SOURCE_FOLDER "/sim/scenarios/default.json"), "\"(\\w+)\":");
    keys.merge(wordsIn(contentOf(SOURCE_FOLDER "/sim/Timeline.cpp"), "^ +\\{+\"(\\w+)\","));
    ASSERT_EQ(keys.count("exit"), 1U);
    for (const std::string& key : keys) {
        EXPECT_EQ(named.count(key), 1U) << key;
    }
}

// Names of functions with the types and names of what they take, without what separates these.
Words functionsIn(const std::string& text, const std::string& pattern) {
    static const std::regex separators("[^\\w:<>&*]");
    Words functions;
    for (const std::string& function : wordsIn(text, pattern)) {
        functions.insert(std::regex_replace(function, separators, ""));
    }
    return functions;
}

void expectSynopsis(const std::string& header, const std::string& declaration,
                    const std::string& prefix) {
    const Words declared = functionsIn(contentOf(SOURCE_FOLDER "/Vantric/" + header),
                                       "^" + declaration + "(\\w+\\([^)]*)\\);");
    // One line for each function.
    const std::string synopsis =
        std::regex_replace(sectionOf("vantric.3", "SYNOPSIS"), std::regex("\n\\.F[ac]"), " ");
    EXPECT_EQ(functionsIn(synopsis, "^\\.F[no] (" + prefix + ".*)$"), declared);
}

TEST(LibraryPage, hasTheFunctionsOfTheCInterface) {
    expectSynopsis("ModemClientC.h", "VANTRIC_EXPORT (?:void|bool|ModemClientHandle) ",
                   "modemClient");
}

TEST(LibraryPage, hasTheOperationsOfTheClass) {
    expectSynopsis("ModemClient.h", "    virtual bool ", "(?!modemClient)");
}

}  // namespace
