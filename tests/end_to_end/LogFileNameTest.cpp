// VRAX_LOG_ROOT and VRAX_LOG_NAME: which file the records go to, if any.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <ostream>
#include <string>

#include "tests/end_to_end/LogLines.h"
#include "tests/end_to_end/LoggedRun.h"
#include "tests/end_to_end/Transcript.h"

namespace {

using vantric_test::connectionRecord;
using vantric_test::failuresToConnect;
using vantric_test::LogSettings;
using vantric_test::printable;
using vantric_test::printErrors;
using vantric_test::repeated;
using vantric_test::SettingText;
using vantric_test::Tree;
using vantric_test::treeFolder;
using vantric_test::unset;
using vantric_test::WorkingFolder;

constexpr auto noFile = std::nullopt;

// What stands for the working folder's absolute path in a row.
constexpr const char* here = "HERE";

const std::string longestName(255, 'n');

struct PathRow {
    SettingText root;
    SettingText name;
    std::optional<std::string> file;  // below the working folder
};

void PrintTo(const PathRow& row, std::ostream* stream) {
    *stream << "root " << printable(row.root) << ", name " << printable(row.name);
}

class LogPath : public testing::TestWithParam<PathRow> {
  public:
    LogPath() {
        std::filesystem::create_directories("sub/deep");
        std::filesystem::create_directory(" blank ");
        std::ofstream("file") << "content";
        vantric_test::refuseConnections();
    }

    Tree expected() const {
        Tree tree = {{"sub", treeFolder},
                     {"sub/deep", treeFolder},
                     {" blank ", treeFolder},
                     {"file", "content"}};
        if (GetParam().file) {
            tree[*GetParam().file] = repeated(connectionRecord, 2);
        }
        return tree;
    }

    LogSettings settings(const std::string& type) const {
        LogSettings settings = {{"VRAX_LOG_LEVEL", "error"}, {"VRAX_LOG_TYPE", type}};
        vantric_test::set(settings, "VRAX_LOG_ROOT", located(GetParam().root));
        vantric_test::set(settings, "VRAX_LOG_NAME", located(GetParam().name));
        return settings;
    }

    const WorkingFolder& folder() const { return folder_; }

  private:
    SettingText located(SettingText text) const {
        if (text && text->rfind(here, 0) == 0) {
            text->replace(0, std::string(here).size(), folder_.path());
        }
        return text;
    }

    WorkingFolder folder_;
};

TEST_P(LogPath, joinsRootAndNameForATextFile) {
    EXPECT_EQ(printErrors(2, settings("text_file")), failuresToConnect(2));
    EXPECT_EQ(folder().tree(), expected());
}

TEST_P(LogPath, joinsRootAndNameForARollingFile) {
    EXPECT_EQ(printErrors(2, settings("rolling_text_file")), failuresToConnect(2));
    EXPECT_EQ(folder().tree(), expected());
}

INSTANTIATE_TEST_SUITE_P(
    Roots, LogPath,
    testing::Values(PathRow{unset, unset, "dummy"}, PathRow{"", unset, "dummy"},
                    PathRow{".", unset, "dummy"}, PathRow{"./", unset, "dummy"},
                    PathRow{"sub", unset, "sub/dummy"}, PathRow{"sub/", unset, "sub/dummy"},
                    PathRow{"sub//", unset, "sub/dummy"},
                    PathRow{"sub/deep/..", unset, "sub/dummy"}, PathRow{"HERE", unset, "dummy"},
                    PathRow{"HERE/sub/", unset, "sub/dummy"},
                    PathRow{" blank ", unset, " blank /dummy"}));

INSTANTIATE_TEST_SUITE_P(
    RootsThatAreNoFolder, LogPath,
    testing::Values(PathRow{"missing", unset, noFile}, PathRow{"sub/missing/", unset, noFile},
                    PathRow{"SUB", unset, noFile}, PathRow{" sub", unset, noFile},
                    PathRow{"sub ", unset, noFile}, PathRow{"~", unset, noFile},
                    PathRow{"$PWD", unset, noFile}, PathRow{"file", unset, noFile},
                    PathRow{"file/", unset, noFile}));

INSTANTIATE_TEST_SUITE_P(
    Names, LogPath,
    testing::Values(PathRow{"sub", "probe.log", "sub/probe.log"},
                    PathRow{unset, "probe.log", "probe.log"}, PathRow{"", "probe", "probe"},
                    PathRow{unset, " a b ", " a b "}, PathRow{unset, "-", "-"},
                    PathRow{unset, "100%s", "100%s"}, PathRow{unset, "$PWD", "$PWD"},
                    PathRow{unset, "a\nb", "a\nb"}, PathRow{unset, "\xFF\xFE", "\xFF\xFE"},
                    PathRow{unset, longestName, longestName},
                    PathRow{unset, "sub/probe.log", "sub/probe.log"},
                    PathRow{"sub", "deep/probe.log", "sub/deep/probe.log"},
                    PathRow{"sub/deep", "../probe.log", "sub/probe.log"},
                    PathRow{"sub", "HERE/probe.log", "probe.log"},
                    PathRow{"missing", "HERE/probe.log", "probe.log"}));

INSTANTIATE_TEST_SUITE_P(NamesThatAreNoFile, LogPath,
                         testing::Values(PathRow{unset, "", noFile}, PathRow{"sub", "", noFile},
                                         PathRow{unset, ".", noFile}, PathRow{unset, "sub", noFile},
                                         PathRow{"sub", "deep", noFile},
                                         PathRow{unset, "new/", noFile},
                                         PathRow{unset, "missing/probe.log", noFile},
                                         PathRow{unset, "file/probe.log", noFile},
                                         PathRow{unset, longestName + "n", noFile}));

}  // namespace
