/// \class com_qel::Korvel::LogInterface::RollingTextFileBackEnd
/// Writes lines to a text file that is renamed to "<path>.old" once it has outgrown a limit.
///
/// The size is tested before a line is written, so a file may end one line beyond the limit; the
/// line that finds it too long opens the new file. One older generation is kept and replaced at
/// every roll.
///
/// Ownership and thread-safety: as IBackEnd. Process-safety: none; two processes with one path
/// rename and overwrite each other's files.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "CoreMisc/Export.h"
#include "CoreMisc/LogInterface/IBackEnd.h"

namespace com_qel::Korvel::LogInterface {

class LineFile;

class VANTRIC_EXPORT RollingTextFileBackEnd final : public IBackEnd {
  public:
    /// Opens `path` for output and truncates it; an older "<path>.old" stays until the next roll. A
    /// relative path is resolved again at every roll: after chdir() a roll replaces "<path>.old" in
    /// the new folder, renames the file of that name there and begins the new file there. Pass an
    /// absolute path when the process changes its folder.
    /// `limit` is in bytes and is compared as a signed number: from 2147483648 on it counts as
    /// negative and every line rolls. A file that cannot be opened, at the start or at a roll, is
    /// not reported and never tried again: every later line is lost. The same holds after a failed
    /// write, except that with a limit of 2147483648 to 4294967294 the next line rolls and begins a
    /// new file.
    RollingTextFileBackEnd(const std::string& path, uint32_t limit);
    ~RollingTextFileBackEnd();

    /// Flushes each line. Allocates nothing, so it never throws.
    void Write(const char* line) override;

  private:
    bool MustRoll();
    void Roll();

    std::unique_ptr<LineFile> file_;
    int32_t limit_;  ///< bytes
    std::string path_;
    std::string oldPath_;  ///< made in advance: a roll must not run out of memory
};

}  // namespace com_qel::Korvel::LogInterface
