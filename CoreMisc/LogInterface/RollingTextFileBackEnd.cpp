#include "CoreMisc/LogInterface/RollingTextFileBackEnd.h"

#include <cstdio>

namespace com_qel::Korvel::LogInterface {

RollingTextFileBackEnd::RollingTextFileBackEnd(const std::string& path, uint32_t limit)
    : file_(path), limit_(static_cast<int32_t>(limit)), path_(path) {}

void RollingTextFileBackEnd::Write(const char* line) {
    if (MustRoll()) {
        Roll();
    }
    file_ << line << '\n';
    file_.flush();
}

bool RollingTextFileBackEnd::MustRoll() {
    if (!file_.is_open()) {
        return false;
    }
    // A failed stream reports -1, which outgrows a negative limit only.
    const int64_t position = std::streamoff(file_.tellp());
    return position > int64_t{limit_};
}

void RollingTextFileBackEnd::Roll() {
    const std::string oldPath = path_ + ".old";
    file_.close();
    std::remove(oldPath.c_str());
    std::rename(path_.c_str(), oldPath.c_str());
    file_.open(path_);
}

}  // namespace com_qel::Korvel::LogInterface
