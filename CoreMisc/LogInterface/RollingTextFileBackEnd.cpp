#include "CoreMisc/LogInterface/RollingTextFileBackEnd.h"

#include <cstdio>

#include "CoreMisc/LogInterface/LineFile.h"

namespace com_qel::Korvel::LogInterface {

RollingTextFileBackEnd::RollingTextFileBackEnd(const std::string& path, uint32_t limit)
    : file_(std::make_unique<LineFile>(path)),
      limit_(static_cast<int32_t>(limit)),
      path_(path),
      oldPath_(path + ".old") {}

RollingTextFileBackEnd::~RollingTextFileBackEnd() = default;

void RollingTextFileBackEnd::Write(const char* line) {
    if (MustRoll()) {
        Roll();
    }
    file_->write(line);
}

bool RollingTextFileBackEnd::MustRoll() {
    // A failed file reports -1, which outgrows a negative limit only.
    return file_->isOpen() && file_->position() > int64_t{limit_};
}

void RollingTextFileBackEnd::Roll() {
    file_->close();
    std::remove(oldPath_.c_str());
    std::rename(path_.c_str(), oldPath_.c_str());
    file_->open(path_);
}

}  // namespace com_qel::Korvel::LogInterface
