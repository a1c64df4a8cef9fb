#include "CoreMisc/LogInterface/LineFile.h"

#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <string_view>

namespace com_qel::Korvel::LogInterface {

namespace {

static_assert(sizeof(off_t) == sizeof(int64_t), "a log may outgrow a 32-bit offset");

constexpr mode_t everybodyReadsAndWrites = 0666;

// What writev() takes, which never changes the bytes.
iovec partOf(std::string_view bytes) {
    return {const_cast<char*>(bytes.data()), bytes.size()};
}

void dropFront(iovec& part, std::size_t count) {
    part.iov_base = static_cast<char*>(part.iov_base) + count;
    part.iov_len -= count;
}

bool writeAll(int descriptor, std::string_view line) {
    iovec parts[] = {partOf(line), partOf("\n")};
    while (parts[1].iov_len != 0) {
        const ssize_t result = writev(descriptor, parts, 2);
        if (result > 0) {
            const auto count = static_cast<std::size_t>(result);
            const std::size_t ofLine = std::min(count, parts[0].iov_len);
            dropFront(parts[0], ofLine);
            dropFront(parts[1], count - ofLine);
        } else if (result == 0 || errno != EINTR) {
            return false;
        }
    }
    return true;
}

}  // namespace

LineFile::LineFile(const std::string& path) {
    open(path);
}

LineFile::~LineFile() {
    close();
}

void LineFile::open(const std::string& path) {
    assert(!isOpen());
    constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC;
    descriptor_ = ::open(path.c_str(), flags, everybodyReadsAndWrites);
    hasFailed_ = !isOpen();
}

void LineFile::close() {
    if (isOpen()) {
        ::close(descriptor_);
        descriptor_ = closed;
    }
}

void LineFile::write(const char* line) {
    if (!hasFailed_) {
        hasFailed_ = !writeAll(descriptor_, line);
    }
}

int64_t LineFile::position() const {
    return hasFailed_ ? -1 : lseek(descriptor_, 0, SEEK_CUR);
}

}  // namespace com_qel::Korvel::LogInterface
