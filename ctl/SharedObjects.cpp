#include "ctl/SharedObjects.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <system_error>
#include <thread>

#include "Vantric/ClientServer/SharedMemoryModemState.h"
#include "ctl/Failure.h"

namespace vantricctl {

namespace {

using com_qel::Orvane::Vantric::WifiListEntry;
using Layout = com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemState::Layout;
static_assert(attachCountSize + offsetof(Layout, record) == stateRecordOffset);

constexpr uint32_t rightVersion = 1;
constexpr uint8_t validMark = 1;
constexpr int64_t stalenessLimitSeconds = 300;

constexpr int mostReads = 100;
constexpr std::chrono::milliseconds readInterval(1);

// Copies at most `limit` bytes.
SharedFile readSharedFile(const std::string& name, std::size_t limit) {
    SharedFile file;
    file.name = name;
    const std::string path = "/dev/shm/" + name;
    struct stat status = {};
    // Never waits for the other end of a pipe and never follows a link.
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (descriptor == -1) {
        file.error = errno;
        lstat(path.c_str(), &status);
    } else {
        file.bytes.resize(limit);
        const bool isFile = fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
        const ssize_t length = isFile ? pread(descriptor, file.bytes.data(), limit, 0) : -1;
        file.error = length >= 0 ? 0 : isFile ? errno : EINVAL;
        file.bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
        close(descriptor);
    }
    file.size = static_cast<uint64_t>(status.st_size);
    file.owner = status.st_uid;
    file.mode = status.st_mode & 07777U;
    file.device = status.st_dev;
    file.inode = status.st_ino;
    return file;
}

SharedFile readConsistently(const SharedObject& object) {
    const std::string lock = object.name + std::string("Lock");
    SharedFile copy;
    for (int read = 0; read < mostReads; ++read) {
        const bool wasHeld = readSemaphore(lock).isHeld();
        copy = readSharedFile(object.name, object.size);
        if (copy.error != 0) {
            break;
        }
        const bool isUnchanged = !readSemaphore(lock).isHeld() &&
                                 readSharedFile(object.name, object.size).bytes == copy.bytes &&
                                 !readSemaphore(lock).isHeld();
        if (!wasHeld && isUnchanged) {
            break;
        }
        std::this_thread::sleep_for(readInterval);
    }
    return copy;
}

Condition conditionOf(const ObjectCopy& copy, const SharedObject& object) {
    if (copy.file.error != 0) {
        return copy.file.exists() ? Condition::Unreadable : Condition::Absent;
    }
    if (!copy.file.hasSize(object.size)) {
        return Condition::WrongSize;
    }
    if (object.recordOffset != stateRecordOffset) {
        return Condition::Published;
    }
    if (copy.version != rightVersion && (copy.version != 0 || copy.valid != 0)) {
        return Condition::OtherVersion;
    }
    if (copy.valid != validMark) {
        return Condition::Invalid;
    }
    return copy.ageSeconds > stalenessLimitSeconds ? Condition::Stale : Condition::Published;
}

// What an unpublished object means for a command that needs it.
Failure failureOf(const ObjectCopy& copy, const SharedObject& object) {
    const std::string& name = copy.file.name;
    const std::string otherVersion = name + " is of another version: ";
    switch (copy.condition) {
        case Condition::Absent:
            return Failure(statusNoServer, "No server publishes: there is no object " + name + ".");
        case Condition::Invalid:
            return Failure(statusNoServer,
                           "No server publishes: " + name + " holds no valid record.");
        case Condition::Unreadable:
            return Failure(statusFailed, name + " cannot be read: " +
                                             std::generic_category().message(copy.file.error) +
                                             ".");
        case Condition::WrongSize:
            return Failure(statusUnusableState,
                           otherVersion + "it has " + std::to_string(copy.file.size) +
                               " bytes instead of " + std::to_string(object.size) + ".");
        case Condition::OtherVersion:
            return Failure(statusUnusableState, otherVersion + "its layout is " +
                                                    std::to_string(copy.version) + " instead of " +
                                                    std::to_string(rightVersion) + ".");
        default:
            return Failure(statusUnusableState, "The state is stale: it is " +
                                                    std::to_string(copy.ageSeconds) + " s old.");
    }
}

}  // namespace

Semaphore readSemaphore(const std::string& name) {
    constexpr std::size_t largestSize = 32;
    Semaphore semaphore = {readSharedFile("sem." + name, largestSize)};
    semaphore.file.name = name;
    const auto word = semaphore.file.at<uint32_t>(0);
    if (semaphore.file.hasSize(16)) {
        semaphore.bits = 32;
        semaphore.value = word >> 1U;  // below it, whether somebody waits
    } else if (semaphore.file.hasSize(32)) {
        semaphore.bits = 64;
        semaphore.value = word;
    }
    return semaphore;
}

const char* conditionName(Condition condition) {
    static constexpr const char* names[] = {"published",  "stale",      "invalid", "other version",
                                            "wrong size", "unreadable", "absent"};
    return names[static_cast<std::size_t>(condition)];
}

ObjectCopy copyOf(const SharedObject& object) {
    ObjectCopy copy = {};
    copy.file = readConsistently(object);
    copy.version = copy.file.at<uint32_t>(attachCountSize + offsetof(Layout, version));
    copy.valid = copy.file.at<uint8_t>(attachCountSize + offsetof(Layout, valid));
    if (copy.file.name == objectOf<ModemState>.name) {
        timespec now = {};
        clock_gettime(CLOCK_REALTIME, &now);
        copy.ageSeconds = now.tv_sec - recordIn<ModemState>(copy).timestamp;
    }
    copy.condition = conditionOf(copy, object);
    return copy;
}

ObjectCopy publishedCopyOf(const SharedObject& object) {
    ObjectCopy copy = copyOf(object);
    if (!copy.isPublished()) {
        throw failureOf(copy, object);
    }
    return copy;
}

std::vector<WifiListEntry> entriesOf(const WifiInfosList& list) {
    // Copied first, because the packed field may be misaligned.
    const auto count = std::clamp<int32_t>(int32_t{list.count}, 0, WifiInfosList::maximumCount);
    return {list.entries, list.entries + count};
}

}  // namespace vantricctl
