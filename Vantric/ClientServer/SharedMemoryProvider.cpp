#include "Vantric/ClientServer/SharedMemoryProvider.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <system_error>
#include <unordered_map>
#include <vector>

#include "Vantric/Utils/MultiProcessLock.h"

namespace com_qel::Orvane::Vantric::ClientServer {

// Named, so that a member of the class below can have these types in a unity build as well.
struct Unmapper {
    uint32_t length = 0;  // bytes, the attach count included
    void operator()(void* address) const { munmap(address, length); }
};
using Mapping = std::unique_ptr<void, Unmapper>;

struct MappedSegment {
    Mapping mapping;
    // cppcheck-suppress unusedStructMember ; closed long ago, kept for debuggers
    int descriptor;
    std::string name;
};

namespace {

constexpr uint32_t attachCountSize = sizeof(uint32_t);
constexpr mode_t ownerReadsAndWrites = 0600;

// What a mapping can reach: on a 32-bit system half of what its size can say.
constexpr uint32_t longestObject = static_cast<uint32_t>(
    std::min<uint64_t>(std::numeric_limits<uint32_t>::max(), std::numeric_limits<off_t>::max()));

[[noreturn]] void throwSystemError(const char* prefix, int error) {
    throw std::runtime_error(prefix + std::generic_category().message(error));
}

[[noreturn]] void throwMappingError(int error) {
    throwSystemError("Failed to map to shared memory, error: ", error);
}

// Gives the object its blocks now: touching them later on a full file system would kill the
// process. Returns the error when there is no room, else 0: other errors come from file systems
// that cannot reserve and from sandboxes that forbid it, and say nothing about room. Plain
// fallocate() because its portable wrapper may fall back to writing into the live object.
int reserveBlocks(int descriptor, off_t length) {
    int result = 0;
    do {
        result = fallocate(descriptor, 0, 0, length);
    } while (result != 0 && errno == EINTR);
    const int error = result == 0 ? 0 : errno;
    const bool isNoRoom = error == ENOSPC || error == EDQUOT || error == EFBIG || error == ENOMEM;
    return isNoRoom ? error : 0;
}

// Resizes the object and maps it whole; closes the descriptor in either case.
Mapping mapObject(int descriptor, uint32_t length) {
    static_cast<void>(ftruncate(descriptor, static_cast<off_t>(length)));
    const int reserveError = reserveBlocks(descriptor, static_cast<off_t>(length));
    void* address = mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    const int mapError = errno;
    close(descriptor);
    if (address == MAP_FAILED) {
        throwMappingError(mapError);
    }
    Mapping mapping(address, Unmapper{length});
    if (reserveError != 0) {
        throwMappingError(reserveError);
    }
    return mapping;
}

uint32_t readAttachCount(const void* segment) {
    uint32_t count = 0;
    std::memcpy(&count, segment, sizeof(count));
    return count;
}

void writeAttachCount(void* segment, uint32_t count) {
    std::memcpy(segment, &count, sizeof(count));
}

}  // namespace

struct SharedMemoryProvider::Implementation {
    std::vector<MappedSegment> segments;
    std::unordered_map<std::string, std::unique_ptr<MultiProcessLock>> locks;  // by segment name
};

SharedMemoryProvider::SharedMemoryProvider()
    : implementation_(std::make_unique<Implementation>()) {}

SharedMemoryProvider::~SharedMemoryProvider() {
    for (MappedSegment& segment : implementation_->segments) {
        bool isLast = false;
        const auto entry = implementation_->locks.find(segment.name);
        if (entry != implementation_->locks.end()) {
            const std::lock_guard<MultiProcessLock> guard(*entry->second);
            uint32_t count = readAttachCount(segment.mapping.get());
            if (count != 0) {
                --count;
                writeAttachCount(segment.mapping.get(), count);
            }
            isLast = count == 0;
        }
        segment.mapping.reset();
        if (isLast) {
            shm_unlink(segment.name.c_str());
        }
    }
}

void* SharedMemoryProvider::map(uint32_t size, const std::string& name) {
    if (size > longestObject - attachCountSize) {
        throwMappingError(EOVERFLOW);
    }
    const int descriptor = shm_open(name.c_str(), O_RDWR | O_CREAT, ownerReadsAndWrites);
    if (descriptor == -1) {
        throwSystemError("Failed to open shared mem file, error: ", errno);
    }
    MappedSegment segment = {mapObject(descriptor, size + attachCountSize), descriptor, name};

    // Everything that may fail comes before the count, which only an entry in the list takes back.
    implementation_->segments.reserve(implementation_->segments.size() + 1);
    auto newLock = std::make_unique<MultiProcessLock>(name + "ProviderLock");
    const auto entry = implementation_->locks.emplace(name, std::move(newLock)).first;
    implementation_->segments.push_back(std::move(segment));

    void* const address = implementation_->segments.back().mapping.get();
    uint32_t previousCount = 0;
    {
        const std::lock_guard<MultiProcessLock> guard(*entry->second);
        previousCount = readAttachCount(address);
        writeAttachCount(address, previousCount + 1);
    }
    void* const payload = static_cast<unsigned char*>(address) + attachCountSize;
    if (previousCount == 0) {
        std::memset(payload, 0, size);
    }
    return payload;
}

}  // namespace com_qel::Orvane::Vantric::ClientServer
