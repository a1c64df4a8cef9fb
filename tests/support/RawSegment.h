// The bytes of a shared-memory object, seen without the product's classes.
#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

namespace vantric_test {

using Bytes = std::vector<unsigned char>;

// The file that a name stands for when nothing is added to it.
inline std::string segmentPath(const std::string& name) {
    return "/dev/shm/" + name;
}

inline bool segmentExists(const std::string& name) {
    return access(segmentPath(name).c_str(), F_OK) == 0;
}

// Throws std::runtime_error when there is no such object.
inline struct stat segmentStatus(const std::string& name) {
    struct stat status = {};
    if (stat(segmentPath(name).c_str(), &status) != 0) {
        throw std::runtime_error("no object " + name);
    }
    return status;
}

inline std::size_t segmentLength(const std::string& name) {
    return static_cast<std::size_t>(segmentStatus(name).st_size);
}

inline mode_t segmentMode(const std::string& name) {
    return segmentStatus(name).st_mode & 07777;
}

inline ino_t segmentInode(const std::string& name) {
    return segmentStatus(name).st_ino;
}

// Appends a 32-bit word as it lies in memory.
inline void appendWord(Bytes& bytes, uint32_t word) {
    for (int shift = 0; shift < 32; shift += 8) {
        bytes.push_back(static_cast<unsigned char>(word >> shift));
    }
}

// Where an object's bytes differ from the expected ones first; empty when they do not.
inline std::string firstDifference(const Bytes& actual, const Bytes& expected) {
    if (actual.size() != expected.size()) {
        return "the object has " + std::to_string(actual.size()) + " bytes";
    }
    const auto [byte, wanted] = std::mismatch(actual.begin(), actual.end(), expected.begin());
    if (byte == actual.end()) {
        return "";
    }
    return "object offset " + std::to_string(byte - actual.begin()) + " holds " +
           std::to_string(int{*byte}) + " instead of " + std::to_string(int{*wanted});
}

// A view of one object; it does not count as an attachment and outlives the removal of the name.
class RawSegment {
  public:
    // Throws std::runtime_error when the object cannot be mapped.
    explicit RawSegment(const std::string& name) : length_(segmentLength(name)) {
        const int descriptor = open(segmentPath(name).c_str(), O_RDWR | O_CLOEXEC);
        map(descriptor, name);
    }

    // Creates the object, all zero.
    RawSegment(const std::string& name, std::size_t length) : length_(length) {
        const int descriptor =
            open(segmentPath(name).c_str(), O_RDWR | O_CLOEXEC | O_CREAT | O_EXCL, 0600);
        if (descriptor != -1 && ftruncate(descriptor, static_cast<off_t>(length)) != 0) {
            throw std::runtime_error("cannot size object " + name);
        }
        map(descriptor, name);
    }

    ~RawSegment() { munmap(address_, length_); }
    RawSegment& operator=(RawSegment&&) = delete;

    Bytes bytes() const { return bytes(0, length_); }

    Bytes bytes(std::size_t offset, std::size_t count) const {
        check(offset, count);
        return Bytes(address_ + offset, address_ + offset + count);
    }

    uint32_t word(std::size_t offset) const {
        const Bytes four = bytes(offset, 4);
        uint32_t value = 0;
        std::memcpy(&value, four.data(), sizeof(value));
        return value;
    }

    void write(std::size_t offset, const Bytes& bytes) {
        check(offset, bytes.size());
        std::memcpy(address_ + offset, bytes.data(), bytes.size());
    }

    void writeWord(std::size_t offset, uint32_t word) {
        Bytes wordBytes;
        appendWord(wordBytes, word);
        write(offset, wordBytes);
    }

  private:
    void map(int descriptor, const std::string& name) {
        if (descriptor == -1) {
            throw std::runtime_error("cannot open object " + name);
        }
        void* address = mmap(nullptr, length_, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
        close(descriptor);
        if (address == MAP_FAILED) {
            throw std::runtime_error("cannot map object " + name);
        }
        address_ = static_cast<unsigned char*>(address);
    }

    void check(std::size_t offset, std::size_t count) const {
        if (offset > length_ || count > length_ - offset) {
            throw std::out_of_range("outside the object");
        }
    }

    std::size_t length_;
    unsigned char* address_ = nullptr;
};

}  // namespace vantric_test
