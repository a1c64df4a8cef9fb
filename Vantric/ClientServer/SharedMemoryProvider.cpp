#include "Vantric/ClientServer/SharedMemoryProvider.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <limits>
#include <mutex>
#include <stdexcept>
#include <system_error>
#include <unordered_map>
#include <vector>

#include "Vantric/Utils/MultiProcessLock.h"

namespace com_qel::Orvane::Vantric::ClientServer {

namespace {

constexpr uint32_t attachCountSize = sizeof(uint32_t);
constexpr mode_t ownerReadsAndWrites = 0600;

struct MappedSegment {
    void* address;
    uint32_t length;  // bytes, the attach count included
    // cppcheck-suppress unusedStructMember ; closed long ago, for whoever looks with a debugger
    int descriptor;
    std::string name;
};

[[noreturn]] void throwSystemError(const char* prefix, int error) {
    throw std::runtime_error(prefix + std::generic_category().message(error));
}

[[noreturn]] void throwMappingError(int error) {
    throwSystemError("Failed to map to shared memory, error: ", error);
}

// Gives the object its blocks now: on a full file system touching them later would kill the
// process. Returns 0 or the error; file systems that cannot reserve blocks are taken as they are.
// Plain fallocate() because its portable wrapper may fall back to writing into the live object.
int reserveBlocks(int descriptor, uint32_t length) {
    int result = 0;
    do {
        result = fallocate(descriptor, 0, 0, static_cast<off_t>(length));
    } while (result != 0 && errno == EINTR);
    const bool isUnsupported = result != 0 && (errno == EOPNOTSUPP || errno == ENOSYS);
    return result == 0 || isUnsupported ? 0 : errno;
}

// The mapping of a whole object; undone unless release()d.
class Mapping {
  public:
    Mapping(int descriptor, uint32_t length) : length_(length) {
        // An object that cannot be resized shows in the reservation.
        static_cast<void>(ftruncate(descriptor, static_cast<off_t>(length)));
        const int reserveError = reserveBlocks(descriptor, length);
        address_ = mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
        const int mapError = errno;
        close(descriptor);
        if (address_ == MAP_FAILED) {
            throwMappingError(mapError);
        }
        if (reserveError != 0) {
            munmap(address_, length_);
            throwMappingError(reserveError);
        }
    }

    ~Mapping() {
        if (address_ != nullptr) {
            munmap(address_, length_);
        }
    }

    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;

    void* address() const { return address_; }
    void release() { address_ = nullptr; }

  private:
    void* address_ = nullptr;
    uint32_t length_;
};

uint32_t readAttachCount(const void* segment) {
    uint32_t count = 0;
    std::memcpy(&count, segment, sizeof(count));
    return count;
}

void writeAttachCount(void* segment, uint32_t count) {
    std::memcpy(segment, &count, sizeof(count));
}

void* payloadOf(void* segment) {
    return static_cast<unsigned char*>(segment) + attachCountSize;
}

}  // namespace

struct SharedMemoryProvider::Implementation {
    std::vector<MappedSegment> segments;
    std::unordered_map<std::string, std::unique_ptr<MultiProcessLock>> locks;  // by segment name
};

SharedMemoryProvider::SharedMemoryProvider()
    : implementation_(std::make_unique<Implementation>()) {}

SharedMemoryProvider::~SharedMemoryProvider() {
    for (const MappedSegment& segment : implementation_->segments) {
        bool isLast = false;
        const auto entry = implementation_->locks.find(segment.name);
        if (entry != implementation_->locks.end()) {
            const std::lock_guard<MultiProcessLock> guard(*entry->second);
            uint32_t count = readAttachCount(segment.address);
            if (count != 0) {
                --count;
                writeAttachCount(segment.address, count);
            }
            isLast = count == 0;
        }
        munmap(segment.address, segment.length);
        if (isLast) {
            shm_unlink(segment.name.c_str());
        }
    }
}

void* SharedMemoryProvider::map(uint32_t size, const std::string& name) {
    if (size > std::numeric_limits<uint32_t>::max() - attachCountSize) {
        throwMappingError(EOVERFLOW);
    }
    const uint32_t length = size + attachCountSize;
    const int descriptor = shm_open(name.c_str(), O_RDWR | O_CREAT, ownerReadsAndWrites);
    if (descriptor == -1) {
        throwSystemError("Failed to open shared mem file, error: ", errno);
    }
    Mapping mapping(descriptor, length);
    MappedSegment segment = {mapping.address(), length, descriptor, name};

    // Everything that may fail comes before the count, which only an entry in the list takes back.
    implementation_->segments.reserve(implementation_->segments.size() + 1);
    auto newLock = std::make_unique<MultiProcessLock>(name + "ProviderLock");
    const auto entry = implementation_->locks.emplace(name, std::move(newLock)).first;

    uint32_t previousCount = 0;
    {
        const std::lock_guard<MultiProcessLock> guard(*entry->second);
        previousCount = readAttachCount(segment.address);
        writeAttachCount(segment.address, previousCount + 1);
    }
    void* payload = payloadOf(segment.address);
    if (previousCount == 0) {
        std::memset(payload, 0, size);
    }
    implementation_->segments.push_back(std::move(segment));
    mapping.release();
    return payload;
}

}  // namespace com_qel::Orvane::Vantric::ClientServer
