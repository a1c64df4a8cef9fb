#include "CoreMisc/LogInterface/LineFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cassert>
#include <cerrno>

namespace com_qel::Korvel::LogInterface {

namespace {

constexpr mode_t everybodyReadsAndWrites = 0666;

// Usually in one piece; a pipe or a full disk may take less.
bool writeAll(int descriptor, const std::string& bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = ::write(descriptor, bytes.data() + done, bytes.size() - done);
        if (count > 0) {
            done += static_cast<std::size_t>(count);
        } else if (count == 0 || errno != EINTR) {
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
        lineWithEnd_.assign(line) += '\n';
        hasFailed_ = !writeAll(descriptor_, lineWithEnd_);
    }
}

int64_t LineFile::position() const {
    return hasFailed_ ? -1 : lseek(descriptor_, 0, SEEK_CUR);
}

}  // namespace com_qel::Korvel::LogInterface
