#include "ctl/SharedFile.h"

#include <fcntl.h>
#include <semaphore.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

namespace vantricctl {

namespace {

constexpr const char* folder = "/dev/shm/";

// The sizes of the C library's semaphores, and how far the value is shifted in the first word.
struct SemaphoreFormat {
    int bits;
    std::size_t size;
    unsigned int shift;
};

constexpr SemaphoreFormat semaphoreFormats[] = {{32, 16, 1}, {64, 32, 0}};
constexpr std::size_t largestSemaphore = 32;

// Returns 0 or the error.
int copyBytes(int descriptor, std::size_t limit, std::string& bytes) {
    bytes.resize(limit);
    std::size_t length = 0;
    ssize_t count = 1;
    while (length < limit && count != 0) {
        count =
            pread(descriptor, bytes.data() + length, limit - length, static_cast<off_t>(length));
        if (count < 0 && errno != EINTR) {
            bytes.clear();
            return errno;
        }
        length += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
    bytes.resize(length);
    return 0;
}

// "7f.. rw-s 00000000 00:1a 12 /dev/shm/NAME" maps the file of that device and number.
bool isMappingOf(const std::string& line, const SharedFile& file) {
    std::istringstream fields(line);
    std::string addresses;
    std::string rights;
    std::string offset;
    std::string device;
    uint64_t inode = 0;
    fields >> addresses >> rights >> offset >> device >> inode;
    char expected[32];
    std::snprintf(expected, sizeof(expected), "%02x:%02x", major(file.device), minor(file.device));
    return inode == file.inode && device == expected;
}

uint32_t mappingsIn(const std::filesystem::path& process, const SharedFile& file) {
    std::ifstream maps(process / "maps");
    uint32_t count = 0;
    for (std::string line; std::getline(maps, line);) {
        count += isMappingOf(line, file) ? 1 : 0;
    }
    return count;
}

}  // namespace

void SharedFile::copyTo(void* destination, std::size_t offset, std::size_t length) const {
    if (offset < bytes.size()) {
        std::memcpy(destination, bytes.data() + offset, std::min(bytes.size() - offset, length));
    }
}

std::string unreadableSentence(const SharedFile& file) {
    return file.name + " cannot be read: " + std::generic_category().message(file.error) + ".";
}

std::string wrongSizeSentence(const SharedFile& file, std::size_t rightSize) {
    return file.name + " is of another version: it has " + std::to_string(file.size) +
           " bytes instead of " + std::to_string(rightSize) + ".";
}

SharedFile readSharedFile(const std::string& name, std::size_t limit) {
    SharedFile file;
    file.name = name;
    const std::string path = folder + name;
    struct stat status = {};
    if (lstat(path.c_str(), &status) != 0) {
        file.error = errno;
        return file;
    }
    // Never waits for the other end of a pipe and never follows a link.
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (descriptor == -1) {
        file.error = errno;
    } else {
        const bool isFile = fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
        file.error = isFile ? copyBytes(descriptor, limit, file.bytes) : EINVAL;
        close(descriptor);
    }
    file.size = static_cast<uint64_t>(status.st_size);
    file.owner = status.st_uid;
    file.mode = status.st_mode & 07777U;
    file.device = status.st_dev;
    file.inode = status.st_ino;
    return file;
}

SharedFile readSemaphoreFile(const std::string& name) {
    SharedFile file = readSharedFile("sem." + name, largestSemaphore);
    file.name = name;
    return file;
}

std::optional<SemaphoreWord> decodeSemaphore(const SharedFile& file) {
    for (const SemaphoreFormat& format : semaphoreFormats) {
        if (file.hasSize(format.size)) {
            uint32_t word = 0;
            file.copyTo(&word, 0, sizeof(word));
            return SemaphoreWord{format.bits, word >> format.shift};
        }
    }
    return std::nullopt;
}

int ownSemaphoreBits() {
    return sizeof(sem_t) == 16 ? 32 : 64;
}

std::vector<Mapper> mappersOf(const SharedFile& file) {
    std::vector<Mapper> mappers;
    std::error_code error;
    const auto options = std::filesystem::directory_options::skip_permission_denied;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", options, error)) {
        const std::string name = entry.path().filename().string();
        pid_t process = 0;
        const auto [end, failure] =
            std::from_chars(name.data(), name.data() + name.size(), process);
        if (failure != std::errc() || end != name.data() + name.size()) {
            continue;
        }
        const uint32_t mappings = mappingsIn(entry.path(), file);
        if (mappings != 0) {
            std::string program;
            std::getline(std::ifstream(entry.path() / "comm"), program);
            mappers.push_back({process, program, mappings});
        }
    }
    std::sort(mappers.begin(), mappers.end(),
              [](const Mapper& left, const Mapper& right) { return left.process < right.process; });
    return mappers;
}

}  // namespace vantricctl
