// The objects and semaphores as files of /dev/shm, opened read-only and copied: nothing is created,
// mapped, attached or taken, and a file that another process shortens meanwhile gives a short copy,
// not a signal.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vantricctl {

// Each object begins with the number of its users.
constexpr std::size_t attachCountSize = sizeof(uint32_t);

struct SharedFile {
    std::string name;
    int error = 0;  // why there is no copy: ENOENT for a missing file; 0 when there is one
    uint64_t size = 0;
    uid_t owner = 0;
    mode_t mode = 0;
    dev_t device = 0;
    uint64_t inode = 0;
    std::string bytes;  // the copy, from the start

    // Whether there is such a file, readable or not.
    bool exists() const { return inode != 0; }

    // Whether the file and the copy have that size.
    bool hasSize(std::size_t right) const { return size == right && bytes.size() == right; }

    // Copies `length` bytes from `offset`, or as many of them as there are.
    void copyTo(void* destination, std::size_t offset, std::size_t length) const;
};

// "NAME cannot be read: ..." and "NAME is of another version: ...".
std::string unreadableSentence(const SharedFile& file);
std::string wrongSizeSentence(const SharedFile& file, std::size_t rightSize);

// Copies at most `limit` bytes of the file /dev/shm/`name`.
SharedFile readSharedFile(const std::string& name, std::size_t limit);

// The file of the semaphore `name`.
SharedFile readSemaphoreFile(const std::string& name);

// A semaphore in the format that its file has: the C library's for programs of 32 or of 64 bits.
struct SemaphoreWord {
    int bits;
    uint32_t value;
};

// Empty when the file is of neither size.
std::optional<SemaphoreWord> decodeSemaphore(const SharedFile& file);

// The format of this program's own semaphores.
int ownSemaphoreBits();

// A process with the number of times that it maps a file.
struct Mapper {
    pid_t process;
    std::string program;
    uint32_t mappings;
};

// The processes that map the file, as far as this user may see them.
std::vector<Mapper> mappersOf(const SharedFile& file);

}  // namespace vantricctl
