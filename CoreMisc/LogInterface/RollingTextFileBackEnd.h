// Writes lines to a text file that is set aside as "<path>.old" once it has outgrown a limit.
//
// The size is tested before a line is written, so a file may end one line beyond the limit; the
// line that finds it too long opens the new file. One older generation is kept and replaced at
// every roll.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "CoreMisc/LogInterface/IBackEnd.h"

namespace com_qel::Korvel::LogInterface {

class LineFile;

class RollingTextFileBackEnd final : public IBackEnd {
  public:
    // Opens `path` for output and truncates it; an older "<path>.old" stays until the next roll.
    // `limit` is in bytes and is compared as a signed number: from 2147483648 on it counts as
    // negative and every line rolls. A file that cannot be opened, at the start or at a roll, is
    // not reported and never tried again: every later line is lost. So it is after a failed write;
    // only with a limit of 2147483648 to 4294967294 the next line rolls and begins a new file.
    RollingTextFileBackEnd(const std::string& path, uint32_t limit);
    ~RollingTextFileBackEnd();

    // Flushes each line.
    void Write(const char* line) override;

  private:
    bool MustRoll();
    void Roll();

    std::unique_ptr<LineFile> file_;
    int32_t limit_;  // bytes
    std::string path_;
};

}  // namespace com_qel::Korvel::LogInterface
