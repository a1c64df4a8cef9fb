#include "fuzz/WholeObject.h"

#include <fcntl.h>
#include <sanitizer/asan_interface.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <stdexcept>

namespace vantric_fuzz {

namespace {

constexpr unsigned char tailByte = 0x5A;

// The addresses at which this process has mapped the file.
std::vector<std::uintptr_t> mappingsOf(const std::string& path) {
    std::vector<std::uintptr_t> addresses;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        if (line.size() > path.size() &&
            line.compare(line.size() - path.size(), path.size(), path) == 0) {
            addresses.push_back(static_cast<std::uintptr_t>(std::stoull(line, nullptr, 16)));
        }
    }
    return addresses;
}

}  // namespace

WholeObject::WholeObject(const std::string& name, std::size_t size) : size_(size) {
    if (vantric_test::segmentLength(name) != size) {
        throw std::runtime_error("the object " + name + " has another size");
    }
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    length_ = (size + page - 1) / page * page;
    const std::string path = vantric_test::segmentPath(name);
    for ([[maybe_unused]] const std::uintptr_t address : mappingsOf(path)) {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the system tells addresses as numbers
        ASAN_POISON_MEMORY_REGION(reinterpret_cast<unsigned char*>(address) + size, length_ - size);
    }
    const int descriptor = open(path.c_str(), O_RDWR | O_CLOEXEC);
    void* address = mmap(nullptr, length_, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    close(descriptor);
    if (address == MAP_FAILED) {
        throw std::runtime_error("cannot map object " + name);
    }
    address_ = static_cast<unsigned char*>(address);
    std::memset(address_ + size_, tailByte, length_ - size_);
}

void WholeObject::write(std::size_t offset, const Bytes& bytes) {
    check(offset, bytes.size());
    std::memcpy(address_ + offset, bytes.data(), bytes.size());
}

bool WholeObject::holds(std::size_t offset, const Bytes& bytes) const {
    check(offset, bytes.size());
    return std::memcmp(address_ + offset, bytes.data(), bytes.size()) == 0;
}

void WholeObject::check(std::size_t offset, std::size_t count) const {
    if (offset > size_ || count > size_ - offset) {
        throw std::out_of_range("outside the object");
    }
}

bool WholeObject::isTailUntouched() const {
    return std::all_of(address_ + size_, address_ + length_,
                       [](unsigned char byte) { return byte == tailByte; });
}

}  // namespace vantric_fuzz
