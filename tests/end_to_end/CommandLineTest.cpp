// Arguments that start no command.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include "tests/end_to_end/Bench.h"
#include "tests/support/PublishedServer.h"

namespace {

using vantric_test::probe;
using vantric_test::run;
using vantric_test::runCleanly;
using vantric_test::sharedMemoryNames;

TEST(VantricprobeCommandLine, takesOnlyTheExactWords) {
    const std::vector<std::string> words = {"--STATUS",
                                            "--enablewifi ",
                                            " --enablewifi",
                                            "--enablewif",
                                            "--enablewifis",
                                            "-enablewifi",
                                            "enablewifi",
                                            "--setconfig",
                                            "--setWifi",
                                            "--setwifi=home",
                                            "-H",
                                            "-help",
                                            "--Help",
                                            "-hh",
                                            "help",
                                            "--",
                                            "-",
                                            "",
                                            "-s",
                                            "--statusCapi",
                                            "--SETCONFIG",
                                            "--switchtoWifi",
                                            "--forgetWifi",
                                            "--available-wifi",
                                            "--setConfigKeepwifi"};
    EXPECT_EQ(runCleanly(probe(words)).output, "");
    EXPECT_TRUE(sharedMemoryNames().empty());
}

TEST(VantricprobeCommandLine, touchesNoSharedMemoryUnlessACommandRuns) {
    const rlimit noCore = {0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    const std::vector<std::vector<std::string>> lines = {{},
                                                         {"-h", "--enablewifi"},
                                                         {"--help"},
                                                         {"--setwifi"},
                                                         {"--setConfig"},
                                                         {"--setConfigKeepWifi"}};
    for (const std::vector<std::string>& line : lines) {
        EXPECT_TRUE(run(probe(line), vantric_test::commandPatience).status.has_value());
        EXPECT_TRUE(sharedMemoryNames().empty()) << testing::PrintToString(line);
    }
}

}  // namespace
