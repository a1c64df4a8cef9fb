// The pages are well-formed and name what is there: all of it, and nothing else.
#include <gtest/gtest.h>

#include "tests/packaging/ManualPage.h"
#include "tests/support/PublishedServer.h"

namespace {

using namespace vantric_test;

using Words = std::set<std::string>;

class EveryPage : public testing::TestWithParam<std::string> {};

// Which other pages are installed, and indexed, is this machine's business.
TEST_P(EveryPage, isFreeOfMandocsComplaints) {
    const std::string page = pagePath(GetParam());
    const Result warnings = run(mandoc({"-T", "lint", "-W", "warning", page}));
    EXPECT_TRUE(warnings.status && warnings.status->raw == 0) << warnings.output;

    const Result all = run(mandoc({"-T", "lint", "-W", "style", page}));
    EXPECT_EQ(wordsIn(all.output, "^(?!.*STYLE: referenced manual not found)(.+)$"), Words());
}

TEST_P(EveryPage, refersToPagesOfOursThatThereAre) {
    for (const std::vector<std::string>& reference :
         allMatches(pageSource(GetParam()), "^\\.Xr (vantric[a-z-]*) (\\d)")) {
        EXPECT_NO_THROW(pageSource(reference.at(0) + "." + reference.at(1)));
    }
}

INSTANTIATE_TEST_SUITE_P(Manual, EveryPage,
                         testing::Values("vantricprobe.1", "vantricsim.1", "vantric.3",
                                         "vantric-protocol.7"),
                         [](const auto& page) {
                             return *wordsIn(page.param, "^([a-z]+)").begin() +
                                    page.param.substr(page.param.size() - 1);
                         });

std::string helpOf(const std::string& program) {
    Command command;
    command.program = program;
    command.arguments = {"--help"};
    const Result result = run(command);
    EXPECT_TRUE(result.status && result.status->raw == 0);
    return result.output;
}

// The options that the page's list explains; several may share an item.
Words explainedOptions(const std::string& page) {
    Words options;
    for (const std::string& item : wordsIn(pageSource(page), "^\\.It (Fl .*)$")) {
        options.merge(wordsIn(item, "Fl (\\S+)"));
    }
    return options;
}

Words mentionedOptions(const std::string& text) {
    return wordsIn(text, "Fl (-?[A-Za-z][A-Za-z-]*)");
}

void expectExactly(const std::string& page, const Words& options) {
    EXPECT_EQ(explainedOptions(page), options);
    EXPECT_EQ(mentionedOptions(pageSection(page, ".Sh SYNOPSIS")), options);
    EXPECT_EQ(mentionedOptions(pageSource(page)), options);
}

TEST(VantricprobePage, hasTheOptionsOfTheProgram) {
    Words options = wordsIn(helpOf(VANTRICPROBE_PATH), "^vantricprobe -(-[A-Za-z]+)");
    ASSERT_FALSE(options.empty());
    options.insert({"h", "-help", "-statuscapi"});  // the usage text keeps them to itself
    expectExactly("vantricprobe.1", options);
}

TEST(VantricprobePage, hasTheOptionsOfTheProgramsTable) {
    const std::string source = fileContent(SOURCE_FOLDER "/client/CommandLine.cpp");
    const Words options = wordsIn(source, "^    \\{\"-(\\S+)\",");
    ASSERT_FALSE(options.empty());
    EXPECT_EQ(explainedOptions("vantricprobe.1"), options);
}

TEST(VantricprobePage, namesTheFilesThatARunLeaves) {
    Command command;
    command.program = VANTRICPROBE_PATH;
    command.arguments = {"--availablewifi"};
    const Result result = run(command);
    EXPECT_TRUE(result.status && result.status->raw == 0);

    Words files;
    for (const std::string& name : sharedMemoryNames()) {
        files.insert("/dev/shm/" + name);
    }
    EXPECT_EQ(wordsIn(pageSource("vantricprobe.1"), "^\\.It Pa (/dev/shm/\\S+)"), files);
}

TEST(VantricprobePage, namesTheVariablesOfTheLog) {
    const Words variables = wordsIn(
        fileContent(SOURCE_FOLDER "/CoreMisc/LogInterface/LogConfig.cpp"), "\"(VRAX_\\w+)\"");
    ASSERT_FALSE(variables.empty());
    EXPECT_EQ(wordsIn(pageSource("vantricprobe.1"), "^\\.It Ev (\\w+)"), variables);
}

TEST(VantricprobePage, quotesDiagnosticsThatTheProgramHas) {
    const std::string program = fileContent(VANTRICPROBE_PATH);
    const Words texts = wordsIn(pageSection("vantricprobe.1", ".Sh DIAGNOSTICS"), "^\\.It (.*)$");
    ASSERT_FALSE(texts.empty());
    for (const std::string& text : texts) {
        EXPECT_NE(program.find(text), std::string::npos) << text;
    }
}

TEST(VantricsimPage, hasTheOptionsOfTheProgram) {
    Words options;
    for (const std::string& names : wordsIn(helpOf(VANTRICSIM_PATH), "^  (-\\S+)")) {
        options.merge(wordsIn(names, "(?:^|,)-(-?[a-z-]+)"));
    }
    ASSERT_FALSE(options.empty());
    expectExactly("vantricsim.1", options);
}

TEST(VantricsimPage, namesEveryKeyOfTheDefaultScenario) {
    Words named;
    for (const std::string& line : wordsIn(pageSource("vantricsim.1"), "^\\.(?:It )?Cm (.*)$")) {
        named.merge(wordsIn(line, "(\\w+)"));
    }
    const Words keys =
        wordsIn(fileContent(SOURCE_FOLDER "/sim/scenarios/default.json"), "\"(\\w+)\":");
    ASSERT_FALSE(keys.empty());
    for (const std::string& key : keys) {
        EXPECT_EQ(named.count(key), 1U) << key;
    }
}

TEST(VantricsimPage, explainsEveryEventOfTheTimeline) {
    const Words events = wordsIn(fileContent(SOURCE_FOLDER "/sim/TimelineReader.cpp"),
                                 "^        \\{\"(\\w+)\", \\{");
    ASSERT_FALSE(events.empty());
    const std::string source = pageSource("vantricsim.1");
    const std::string list = source.substr(source.find("The events, with their further keys"));
    EXPECT_EQ(wordsIn(list, "^\\.It Cm (\\w+)"), events);
}

// The functions of a page's synopsis, with the types and names of what they take.
std::set<std::vector<std::string>> synopsisFunctions(const std::string& prefix) {
    std::string section = pageSection("vantric.3", ".Sh SYNOPSIS");
    std::set<std::vector<std::string>> functions;
    for (const std::vector<std::string>& call :
         allMatches(section, "^\\.(?:Fn|Fo) (" + prefix + "\\w*)((?: .*)?(?:\n\\.Fa \".*\")*)")) {
        std::vector<std::string> function = {call.at(0)};
        for (const std::vector<std::string>& argument :
             allMatches(call.at(1), "\"(.*?) ?([*&]?)(\\w+)\"")) {
            function.push_back(argument.at(0) + argument.at(1) + " " + argument.at(2));
        }
        functions.insert(function);
    }
    return functions;
}

// The functions that a header declares, in the same form.
std::set<std::vector<std::string>> declaredFunctions(const std::string& header,
                                                     const std::string& prefix) {
    std::set<std::vector<std::string>> functions;
    for (const std::vector<std::string>& declaration :
         allMatches(fileContent(SOURCE_FOLDER "/Vantric/" + header),
                    "^" + prefix + "(\\w+)\\(([^)]*)\\);")) {
        std::vector<std::string> function = {declaration.at(0)};
        for (const std::vector<std::string>& argument :
             allMatches(declaration.at(1), "\\s*([^,]*?[*&]?) (\\w+)(?:,|$)")) {
            function.push_back(argument.at(0) + " " + argument.at(1));
        }
        functions.insert(function);
    }
    return functions;
}

TEST(LibraryPage, hasTheFunctionsOfTheCInterface) {
    const auto functions = declaredFunctions("ModemClientC.h", "(?:void|bool|ModemClientHandle) ");
    ASSERT_EQ(functions.size(), 13U);
    EXPECT_EQ(synopsisFunctions("modemClient"), functions);
}

TEST(LibraryPage, hasTheOperationsOfTheClass) {
    const auto operations = declaredFunctions("ModemClient.h", "    virtual bool ");
    ASSERT_EQ(operations.size(), 17U);
    EXPECT_EQ(synopsisFunctions("(?!modemClient)"), operations);
}

}  // namespace
