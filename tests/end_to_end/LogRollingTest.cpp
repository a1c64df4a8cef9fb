// The rolling file and the older one beside it, and the size that is the limit by default.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/end_to_end/LogLines.h"
#include "tests/end_to_end/LoggedRun.h"
#include "tests/end_to_end/Transcript.h"

namespace {

using vantric_test::bytesOf;
using vantric_test::connectionRecord;
using vantric_test::connectionRecordSize;
using vantric_test::failuresToConnect;
using vantric_test::LogSettings;
using vantric_test::printErrors;
using vantric_test::repeated;
using vantric_test::rollingFile;
using vantric_test::Tree;
using vantric_test::treeFolder;
using vantric_test::unset;
using vantric_test::WorkingFolder;

// A file that cannot be opened, for a reason that a folder or a missing right does not have.
class SocketFile {
  public:
    explicit SocketFile(const char* path) : socket_(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path, sizeof(address.sun_path) - 1);
        EXPECT_EQ(bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    }
    ~SocketFile() { close(socket_); }

    SocketFile(const SocketFile&) = delete;
    SocketFile& operator=(const SocketFile&) = delete;

  private:
    int socket_;
};

// Every command brings a record of 121 bytes for the lock and one of 184 for an object that cannot
// be mapped: 33 records are 5001 bytes.
TEST(LogRolling, aFileOfFiveThousandAndOneBytesIsSetAsideByDefault) {
    const WorkingFolder folder;
    vantric_test::breakOneLock();
    ASSERT_EQ(mkfifo("/dev/shm/ModemStateShm", S_IRUSR | S_IWUSR), 0);
    printErrors(17, rollingFile(unset));
    EXPECT_EQ(bytesOf("dummy.old").size(), 5001U);
    EXPECT_EQ(bytesOf("dummy").size(), 184U);
}

// Every command brings four records of 121 bytes for locks and one of 195 for an object that cannot
// be opened: 37 records are 4995 bytes, and the 38th makes them 5116.
TEST(LogRolling, aFileOfLittleLessThanFiveThousandBytesIsNotSetAsideByDefault) {
    const WorkingFolder folder;
    vantric_test::breakOneLock();
    for (const char* lock :
         {"ModemStateShmProviderLock", "ModemStateExLock", "ModemWifiListLock"}) {
        std::filesystem::create_directory(std::string("/dev/shm/sem.") + lock);
    }
    const SocketFile object("/dev/shm/ModemCommandsShm");
    printErrors(8, rollingFile(unset));
    EXPECT_EQ(bytesOf("dummy.old").size(), 5116U);
    EXPECT_EQ(bytesOf("dummy").size(), 121U + 195U);
}

TEST(LogRolling, onlyTheLastTwoFilesAreKept) {
    const WorkingFolder folder;
    vantric_test::refuseConnections();
    const std::string threeRecords = std::to_string(3 * connectionRecordSize - 1);
    printErrors(8, rollingFile(threeRecords));
    EXPECT_EQ(folder.tree(), (Tree{{"dummy", repeated(connectionRecord, 2)},
                                   {"dummy.old", repeated(connectionRecord, 3)}}));
}

TEST(LogRolling, anEarlierLogIsEmptiedAndNotSetAside) {
    const WorkingFolder folder;
    std::ofstream("dummy") << std::string(6000, 'x');
    std::ofstream("dummy.old") << "an older one";
    vantric_test::refuseConnections();
    printErrors(2, rollingFile(unset));
    EXPECT_EQ(folder.tree(),
              (Tree{{"dummy", repeated(connectionRecord, 2)}, {"dummy.old", "an older one"}}));
}

TEST(LogRolling, theFirstFileThatIsSetAsideReplacesThatOfAnEarlierRun) {
    const WorkingFolder folder;
    std::ofstream("dummy.old") << "an older one";
    vantric_test::refuseConnections();
    printErrors(2, rollingFile("1"));
    EXPECT_EQ(folder.tree(), (Tree{{"dummy", connectionRecord}, {"dummy.old", connectionRecord}}));
}

TEST(LogRolling, theNameOfTheOldFileIsThatOfTheLogWithOldBehind) {
    const WorkingFolder folder;
    std::filesystem::create_directory("sub");
    vantric_test::refuseConnections();
    LogSettings settings = rollingFile("1");
    settings["VRAX_LOG_ROOT"] = "sub/";
    settings["VRAX_LOG_NAME"] = "probe.log";
    printErrors(2, settings);
    EXPECT_EQ(folder.tree(), (Tree{{"sub", treeFolder},
                                   {"sub/probe.log", connectionRecord},
                                   {"sub/probe.log.old", connectionRecord}}));
}

TEST(LogRolling, anEmptyFolderInTheWayOfTheOldFileIsReplaced) {
    const WorkingFolder folder;
    std::filesystem::create_directory("dummy.old");
    vantric_test::refuseConnections();
    printErrors(2, rollingFile("1"));
    EXPECT_EQ(folder.tree(), (Tree{{"dummy", connectionRecord}, {"dummy.old", connectionRecord}}));
}

TEST(LogRolling, aFullFolderInTheWayOfTheOldFileStaysAndTheLogIsEmptied) {
    const WorkingFolder folder;
    std::filesystem::create_directories("dummy.old/occupied");
    vantric_test::refuseConnections();
    EXPECT_EQ(printErrors(3, rollingFile("1")), failuresToConnect(3));
    EXPECT_EQ(folder.tree(), (Tree{{"dummy", connectionRecord},
                                   {"dummy.old", treeFolder},
                                   {"dummy.old/occupied", treeFolder}}));
}

}  // namespace
