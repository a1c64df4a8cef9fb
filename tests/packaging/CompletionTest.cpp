// What bash makes of half a command line, once it has read our completion and nothing else.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using namespace vantric_test;

// Keys of an interactive shell: completes the word; inserts all possible completions.
constexpr const char* tabulator = "\t";
constexpr const char* everything = "\033*";

// A folder to type in, with files of its own.
class Desk {
  public:
    Desk() {
        folder_.write("backup a.cfg", "");
        folder_.write("backup-b.cfg", "");
        folder_.write("other.cfg", "");
        std::filesystem::create_directory(folder_ / "sites");
    }

    // Types `line` and the key into a shell that has completion for `program`; the words that the
    // program would have got, one a line.
    std::string words(const std::string& program, const std::string& line,
                      const std::string& key) const {
        const std::string keys =
            typing_.write("keys", "cd '" + folder_.path().string() + "'\nsource " COMPLETIONS "/" +
                                      program + "\n" + program + "() { printf '%s\\n' \"$@\"; }\n" +
                                      program + " " + line + key + "\n");
        // In a session of its own: an interactive shell would take over the terminal of the tests.
        Command command;
        command.program = SETSID_PATH;
        command.arguments = {BASH_PATH, "-c",      "exec \"$1\" --norc --noprofile -i < \"$2\"",
                             "keys",    BASH_PATH, keys};
        command.environment = {{"TERM", "dumb"},
                               {"INPUTRC", "/dev/null"},
                               {"HISTFILE", typing_ / "history"}};  // not the user's
        const Result result = run(command);
        EXPECT_TRUE(result.status && result.status->raw == 0) << result.errors;
        return result.output;
    }

    std::string probeWords(const std::string& line, const std::string& key) const {
        return words("vantricprobe", line, key);
    }
    std::string simWords(const std::string& line, const std::string& key) const {
        return words("vantricsim", line, key);
    }

  private:
    TemporaryFolder folder_;
    TemporaryFolder typing_;
};

constexpr const char* allFiles = "backup a.cfg\nbackup-b.cfg\nother.cfg\nsites\n";

TEST(VantricprobeCompletion, offersEveryOption) {
    EXPECT_EQ(Desk().probeWords("", everything),
              "--availablewifi\n--disablewifi\n--enablewifi\n--forgetwifi\n--help\n--setConfig\n"
              "--setConfigKeepWifi\n--setwifi\n--status\n--statuscapi\n--switchtocarrier\n"
              "--switchtowifi\n-h\n");
}

TEST(VantricprobeCompletion, completesAnUnambiguousPrefix) {
    EXPECT_EQ(Desk().probeWords("--av", tabulator), "--availablewifi\n");
    EXPECT_EQ(Desk().probeWords("--switchtoc", tabulator), "--switchtocarrier\n");
}

TEST(VantricprobeCompletion, offersWhatSharesAPrefix) {
    EXPECT_EQ(Desk().probeWords("--sta", everything), "--status\n--statuscapi\n");
    EXPECT_EQ(Desk().probeWords("--setC", everything), "--setConfig\n--setConfigKeepWifi\n");
}

TEST(VantricprobeCompletion, offersNothingForAnUnknownPrefix) {
    EXPECT_EQ(Desk().probeWords("--Status", everything), "--Status\n");
    EXPECT_EQ(Desk().probeWords("other", everything), "other\n");
}

TEST(VantricprobeCompletion, goesOnBehindACommand) {
    EXPECT_EQ(Desk().probeWords("--enablewifi --fo", tabulator), "--enablewifi\n--forgetwifi\n");
    EXPECT_EQ(Desk().probeWords("--setConfig other.cfg --fo", tabulator),
              "--setConfig\nother.cfg\n--forgetwifi\n");
}

TEST(VantricprobeCompletion, offersFilesForAConfiguration) {
    const std::vector<std::string> options = {"--setConfig", "--setConfigKeepWifi"};
    for (const std::string& option : options) {
        EXPECT_EQ(Desk().probeWords(option + " ", everything), option + "\n" + allFiles);
        EXPECT_EQ(Desk().probeWords(option + " ot", tabulator), option + "\nother.cfg\n");
    }
}

TEST(VantricprobeCompletion, quotesAFilesBlanksAndGoesOnInAFolder) {
    EXPECT_EQ(Desk().probeWords("--setConfig backup\\ ", tabulator), "--setConfig\nbackup a.cfg\n");
    EXPECT_EQ(Desk().probeWords("--setConfig \"backup ", tabulator), "--setConfig\nbackup a.cfg\n");
    EXPECT_EQ(Desk().probeWords("--setConfig si", tabulator), "--setConfig\nsites/\n");
}

TEST(VantricprobeCompletion, inventsNoNetworks) {
    EXPECT_EQ(Desk().probeWords("--setwifi ", everything), "--setwifi\n");
    EXPECT_EQ(Desk().probeWords("--setwifi ot", everything), "--setwifi\not\n");
    EXPECT_EQ(Desk().probeWords("--setwifi --st", everything), "--setwifi\n--st\n");
}

TEST(VantricsimCompletion, offersEveryOption) {
    EXPECT_EQ(Desk().simWords("", everything),
              "--check\n--duration\n--help\n--list-commands\n--scenario\n--version\n-h\n");
}

TEST(VantricsimCompletion, completesAnUnambiguousPrefix) {
    EXPECT_EQ(Desk().simWords("--check --li", tabulator), "--check\n--list-commands\n");
}

TEST(VantricsimCompletion, offersFilesForAScenario) {
    EXPECT_EQ(Desk().simWords("--scenario ", everything), std::string("--scenario\n") + allFiles);
    EXPECT_EQ(Desk().simWords("--scenario ot", tabulator), "--scenario\nother.cfg\n");
    EXPECT_EQ(Desk().simWords("--scenario=ot", tabulator), "--scenario=other.cfg\n");
}

TEST(VantricsimCompletion, inventsNoDurations) {
    EXPECT_EQ(Desk().simWords("--duration ", everything), "--duration\n");
    EXPECT_EQ(Desk().simWords("--duration=", everything), "--duration=\n");
}

}  // namespace
