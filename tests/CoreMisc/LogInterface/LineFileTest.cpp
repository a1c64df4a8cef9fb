#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
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
using namespace vantric_test;

namespace {

constexpr std::size_t moreThanAPipeHolds = 1000000;

// The descriptor that the next file to be opened will get.
int nextDescriptor() {
    const int descriptor = open("/dev/null", O_RDONLY);
    close(descriptor);
    return descriptor;
}

// A pipe's end that reads, with a bound on every wait.
class PipeReader {
  public:
    // Does not wait for a writer.
    explicit PipeReader(const std::string& path)
        : descriptor_(open(path.c_str(), O_RDONLY | O_NONBLOCK)) {}
    ~PipeReader() { close(descriptor_); }
    PipeReader& operator=(PipeReader&&) = delete;

    bool isFull() const {
        int waiting = 0;
        return ioctl(descriptor_, FIONREAD, &waiting) == 0 &&
               waiting == fcntl(descriptor_, F_GETPIPE_SZ);
    }

    // As many bytes as there are to come, or fewer when none comes for some seconds.
    std::string readUpTo(std::size_t size) const {
        constexpr int patienceMilliseconds = 20000;
        std::string content;
        char piece[4096];
        pollfd ready = {descriptor_, POLLIN, 0};
        while (content.size() < size && poll(&ready, 1, patienceMilliseconds) == 1) {
            const ssize_t count = read(descriptor_, piece, sizeof(piece));
            if (count <= 0) {
                break;
            }
            content.append(piece, static_cast<std::size_t>(count));
        }
        return content;
    }

  private:
    int descriptor_;
};

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
    Interruptions& operator=(Interruptions&&) = delete;

    static int count() { return handled_; }

  private:
    static std::atomic<int> handled_;

    std::atomic<bool> isOver_{false};
    std::thread sender_;
    struct sigaction previous_ = {};
};

std::atomic<int> Interruptions::handled_{0};

}  // namespace

TEST(LineFile, isCreatedForAllUsersLessTheUmask) {
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
    const int next = nextDescriptor();
    const LineFile file(folder / "log");
    EXPECT_EQ(fcntl(next, F_GETFD), FD_CLOEXEC);
}

TEST(LineFile, hasItsPositionAfterItsLastLine) {
    const TemporaryFolder folder;
    LineFile file(folder / "log");
    EXPECT_TRUE(file.isOpen());
    EXPECT_EQ(file.position(), 0);
    file.write("four");
    EXPECT_EQ(file.position(), 5);
    file.write("");
    EXPECT_EQ(file.position(), 6);
}

TEST(LineFile, hasNoPositionInAPipe) {
    const TemporaryFolder folder;
    const std::string path = folder / "pipe";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const PipeReader reader(path);
    LineFile file(path);
    file.write("line");
    EXPECT_EQ(file.position(), -1);
    EXPECT_EQ(reader.readUpTo(5), "line\n");
}

TEST(LineFile, hasNoPositionAfterAFailedWriteButStaysOpen) {
    const SmallDisk disk(65536);
    LineFile file(disk / "log");
    file.write(std::string(100000, 'x').c_str());
    EXPECT_TRUE(file.isOpen());
    EXPECT_EQ(file.position(), -1);
}

TEST(LineFile, forgetsAFailureWhenItIsOpenedAgain) {
    const TemporaryFolder folder;
    LineFile file(folder / "missing/log");
    EXPECT_FALSE(file.isOpen());
    EXPECT_EQ(file.position(), -1);
    file.open(folder / "log");
    file.write("line");
    EXPECT_EQ(readFile(folder / "log"), "line\n");
}

// The first interruption of a full pipe's writer ends a call that wrote something, the next ones
// end calls that wrote nothing.
TEST(LineFile, writesAllOfALineThatIsTakenInPiecesAndInterrupted) {
    const TemporaryFolder folder;
    const std::string path = folder / "pipe";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const std::string line(moreThanAPipeHolds, 'x');
    const std::string expected = line + "\nnext\n";
    const PipeReader reader(path);
    std::string received;
    std::thread receiver([&] {
        EXPECT_TRUE(eventually([&] { return reader.isFull(); }, std::chrono::seconds(20)));
        const int before = Interruptions::count();
        EXPECT_TRUE(eventually([&] { return Interruptions::count() - before > 3; },
                               std::chrono::seconds(20)));
        received = reader.readUpTo(expected.size());
    });
    {
        LineFile file(path);
        const Interruptions interruptions;
        file.write(line.c_str());
        file.write("next");
    }
    receiver.join();
    EXPECT_EQ(received, expected);
}

TEST(LineFile, growsBeyondWhatA32BitOffsetCounts) {
    constexpr int64_t threeGigabytes = int64_t{3} << 30;
    const TemporaryFolder folder;
    const std::string path = folder / "log";
    const int next = nextDescriptor();
    LineFile file(path);
    ASSERT_EQ(lseek64(next, threeGigabytes, SEEK_SET), threeGigabytes);
    file.write("line");
    EXPECT_EQ(file.position(), threeGigabytes + 5);
    EXPECT_EQ(std::filesystem::file_size(path), static_cast<uint64_t>(threeGigabytes) + 5);
}
