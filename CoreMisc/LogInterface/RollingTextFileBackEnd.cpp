#include "CoreMisc/LogInterface/RollingTextFileBackEnd.h"

#include <cstdio>
#include <string_view>

namespace com_qel::Korvel::LogInterface {

RollingTextFileBackEnd::RollingTextFileBackEnd(const std::string& path, uint32_t limit)
    : file_(path), limit_(static_cast<int32_t>(limit)), path_(path) {}

void RollingTextFileBackEnd::Write(const char* line) {
    if (MustRoll()) {
        Roll();
    }
    const std::string_view text = line;
    file_ << text << '\n';
    file_.flush();
    handedOver_ += static_cast<int64_t>(text.size()) + 1;
}

bool RollingTextFileBackEnd::MustRoll() {
    // No file is longer than what it was given, so that only later its position must be asked for.
    if (!file_.is_open() || handedOver_ <= int64_t{limit_}) {
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
    handedOver_ = 0;
}

}  // namespace com_qel::Korvel::LogInterface
