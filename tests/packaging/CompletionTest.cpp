// What bash completes after it has read our completion and nothing else.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using namespace vantric_test;

// Keys of an interactive shell: completes the word; inserts all possible completions.
constexpr const char* tabulator = "\t";
constexpr const char* everything = "\033*";

constexpr const char* allFiles = "backup a.cfg\nbackup-b.cfg\nother.cfg\nsites\n";

struct Typed {
    std::string program;
    std::string line;
    std::string key;
    std::string words;  // that the program gets, one a line
};

// Types the line and the key, in a folder with allFiles, into a shell that has completion for the
// program.
std::string wordsOf(const Typed& typed) {
    const TemporaryFolder folder;
    for (const char* name : {"backup a.cfg", "backup-b.cfg", "other.cfg"}) {
        folder.write(name, "");
    }
    std::filesystem::create_directory(folder / "sites");
    const TemporaryFolder typing;
    const std::string keys = typing.write(
        "keys", "cd '" + folder.path().string() +
                    "'\nsource " SOURCE_FOLDER "/packaging/completion/" + typed.program + "\n" +
                    typed.program + "() { printf '%s\\n' \"$@\"; }\n" + typed.program + " " +
                    typed.line + typed.key + "\n");
    // In a session of its own: an interactive shell would take over the terminal of the tests.
    Command command;
    command.program = SETSID_PATH;
    command.arguments = {BASH_PATH, "-c",      "exec \"$1\" --norc --noprofile -i < \"$2\"",
                         "keys",    BASH_PATH, keys};
    command.environment = {
        {"TERM", "dumb"}, {"INPUTRC", "/dev/null"}, {"HISTFILE", typing / "history"}};
    const Result result = run(command);
    EXPECT_EQ(result.status.raw, 0) << result.errors;
    return result.output;
}

void expectWords(const std::vector<Typed>& cases) {
    for (const Typed& typed : cases) {
        EXPECT_EQ(wordsOf(typed), typed.words) << typed.line;
    }
}

TEST(Completion, completesAnUnambiguousPrefix) {
    expectWords({{"vantricprobe", "--av", tabulator, "--availablewifi\n"},
                 {"vantricprobe", "--switchtoc", tabulator, "--switchtocarrier\n"},
                 {"vantricprobe", "--enablewifi --fo", tabulator, "--enablewifi\n--forgetwifi\n"},
                 {"vantricprobe", "--setConfig other.cfg --fo", tabulator,
                  "--setConfig\nother.cfg\n--forgetwifi\n"},
                 {"vantricctl", "load-config other.cfg --ke", tabulator,
                  "load-config\nother.cfg\n--keep-wifi\n"},
                 {"vantricctl", "join home --encryption wpa2-", tabulator,
                  "join\nhome\n--encryption\nwpa2-enterprise\n"},
                 {"vantricsim", "--check --li", tabulator, "--check\n--list-commands\n"}});
}

TEST(Completion, offersAllOptionsThatShareAPrefix) {
    expectWords({{"vantricprobe", "--sta", everything, "--status\n--statuscapi\n"},
                 {"vantricprobe", "--setC", everything, "--setConfig\n--setConfigKeepWifi\n"}});
}

TEST(Completion, offersFilesWhereAFileIsExpected) {
    expectWords(
        {{"vantricprobe", "--setConfig ", everything, std::string("--setConfig\n") + allFiles},
         {"vantricprobe", "--setConfigKeepWifi ot", tabulator, "--setConfigKeepWifi\nother.cfg\n"},
         {"vantricsim", "--scenario ", everything, std::string("--scenario\n") + allFiles},
         {"vantricsim", "--scenario=ot", tabulator, "--scenario=other.cfg\n"}});
}

TEST(Completion, quotesBlanksInFileNamesAndDescendsIntoFolders) {
    expectWords(
        {{"vantricprobe", "--setConfig backup\\ ", tabulator, "--setConfig\nbackup a.cfg\n"},
         {"vantricprobe", "--setConfig \"backup ", tabulator, "--setConfig\nbackup a.cfg\n"},
         {"vantricprobe", "--setConfig si", tabulator, "--setConfig\nsites/\n"}});
}

TEST(Completion, offersNothingForOtherValuesAndUnknownPrefixes) {
    expectWords({{"vantricprobe", "--Status", everything, "--Status\n"},
                 {"vantricprobe", "--setwifi ", everything, "--setwifi\n"},
                 {"vantricprobe", "--setwifi ot", everything, "--setwifi\not\n"},
                 {"vantricprobe", "--setwifi --st", everything, "--setwifi\n--st\n"},
                 {"vantricsim", "--duration ", everything, "--duration\n"},
                 {"vantricsim", "--duration=", everything, "--duration=\n"}});
}

}  // namespace
