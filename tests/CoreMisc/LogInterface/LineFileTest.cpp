#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <thread>

#include "CoreMisc/LogInterface/LineFile.h"
#include "tests/CoreMisc/LogTestSupport.h"
#include "tests/support/Polling.h"

using com_qel::Korvel::LogInterface::LineFile;
using vantric_test::eventually;
using vantric_test::readFile;
using vantric_test::SmallDisk;
using vantric_test::TemporaryFolder;

namespace {

constexpr std::size_t moreThanAPipeHolds = 1000000;

// Reads a pipe to its end. Begins when the pipe is full and its writer, which waits, has been
// interrupted several times: the first interruption ends a call that wrote something, the next ones
// end calls that wrote nothing.
std::string readBehindInterruptions(const std::string& path, const std::atomic<int>& count) {
    const int descriptor = open(path.c_str(), O_RDONLY);
    const int capacity = fcntl(descriptor, F_GETPIPE_SZ);
    int waiting = 0;
    eventually([&] { return ioctl(descriptor, FIONREAD, &waiting) == 0 && waiting == capacity; });
    const int before = count;
    EXPECT_TRUE(eventually([&] { return count - before > 3; }));
    std::string content;
    char piece[4096];
    for (ssize_t size = 1; size > 0;) {
        size = read(descriptor, piece, sizeof(piece));
        content.append(piece, size > 0 ? static_cast<std::size_t>(size) : 0);
    }
    close(descriptor);
    return content;
}

// Signals that interrupt what the constructing thread is doing, until destroyed.
class Interruptions {
  public:
    Interruptions() {
        struct sigaction action = {};
        action.sa_handler = [](int) { ++handled_; };
        sigaction(SIGUSR1, &action, &previous_);
        sender_ = std::thread([this, thread = pthread_self()] {
            while (!isOver_) {
                pthread_kill(thread, SIGUSR1);
                std::this_thread::sleep_for(std::chrono::microseconds(200));
            }
        });
    }
    ~Interruptions() {
        isOver_ = true;
        sender_.join();
        sigaction(SIGUSR1, &previous_, nullptr);
    }
    Interruptions(const Interruptions&) = delete;
    Interruptions& operator=(const Interruptions&) = delete;

    static const std::atomic<int>& count() { return handled_; }

  private:
    static std::atomic<int> handled_;

    std::atomic<bool> isOver_{false};
    std::thread sender_;
    struct sigaction previous_ = {};
};

std::atomic<int> Interruptions::handled_{0};

}  // namespace

TEST(LineFile, isOpenFromTheStart) {
    const TemporaryFolder folder;
    const LineFile file(folder / "log");
    EXPECT_TRUE(file.isOpen());
    EXPECT_EQ(file.position(), 0);
}

TEST(LineFile, isCreatedForEverybodyLessTheUmask) {
    const TemporaryFolder folder;
    const mode_t before = umask(0027);
    const LineFile file(folder / "log");
    umask(before);
    struct stat status = {};
    ASSERT_EQ(stat((folder / "log").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
}

TEST(LineFile, isNotInheritedByOtherPrograms) {
    const TemporaryFolder folder;
    const int next = dup(STDIN_FILENO);
    close(next);
    const LineFile file(folder / "log");
    EXPECT_NE(fcntl(next, F_GETFD) & FD_CLOEXEC, 0);
}

TEST(LineFile, standsBehindItsLastLine) {
    const TemporaryFolder folder;
    LineFile file(folder / "log");
    file.write("four");
    EXPECT_EQ(file.position(), 5);
    file.write("");
    EXPECT_EQ(file.position(), 6);
}

TEST(LineFile, hasNoPositionWhenItCouldNotBeOpened) {
    const TemporaryFolder folder;
    const LineFile file(folder / "missing/log");
    EXPECT_FALSE(file.isOpen());
    EXPECT_EQ(file.position(), -1);
}

TEST(LineFile, hasNoPositionInAPipe) {
    const TemporaryFolder folder;
    const std::string path = folder / "pipe";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK);
    LineFile file(path);
    file.write("line");
    EXPECT_EQ(file.position(), -1);
    char line[6] = {};
    EXPECT_EQ(read(reader, line, 5), 5);
    EXPECT_STREQ(line, "line\n");
    close(reader);
}

TEST(LineFile, hasNoPositionOnceAWriteFailedButStaysOpen) {
    const SmallDisk disk(65536);
    LineFile file(disk / "log");
    file.write(std::string(100000, 'x').c_str());
    EXPECT_TRUE(file.isOpen());
    EXPECT_EQ(file.position(), -1);
}

TEST(LineFile, forgetsAFailureWhenItIsOpenedAgain) {
    const TemporaryFolder folder;
    LineFile file(folder / "missing/log");
    file.open(folder / "log");
    file.write("line");
    EXPECT_EQ(readFile(folder / "log"), "line\n");
}

TEST(LineFile, isEmptiedWhenItIsOpenedAgain) {
    const TemporaryFolder folder;
    LineFile file(folder / "log");
    file.write("line");
    file.close();
    EXPECT_FALSE(file.isOpen());
    file.open(folder / "log");
    EXPECT_EQ(file.position(), 0);
    EXPECT_EQ(readFile(folder / "log"), "");
}

TEST(LineFile, writesAllOfALineThatIsTakenInPiecesAndInterrupted) {
    const TemporaryFolder folder;
    const std::string path = folder / "pipe";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const std::string line(moreThanAPipeHolds, 'x');
    std::string received;
    std::thread reader([&] { received = readBehindInterruptions(path, Interruptions::count()); });
    {
        LineFile file(path);
        const Interruptions interruptions;
        file.write(line.c_str());
        file.write("next");
    }
    reader.join();
    EXPECT_EQ(received, line + "\nnext\n");
}

TEST(LineFile, growsBeyondWhatA32BitOffsetCounts) {
    constexpr int64_t threeGigabytes = int64_t{3} << 30;
    const TemporaryFolder folder;
    const std::string path = folder / "log";
    const int next = dup(STDIN_FILENO);
    close(next);
    LineFile file(path);
    ASSERT_EQ(lseek64(next, threeGigabytes, SEEK_SET), threeGigabytes);
    file.write("line");
    EXPECT_EQ(file.position(), threeGigabytes + 5);
    EXPECT_EQ(std::filesystem::file_size(path), static_cast<uint64_t>(threeGigabytes) + 5);
}
