/// \class com_qel::Korvel::LogInterface::TextFileBackEnd
/// Writes lines to a text file and flushes each, so nothing is lost when the process dies.
///
/// Ownership and thread-safety: as IBackEnd. Process-safety: none; two processes with one path
/// overwrite each other's lines.
#pragma once

#include <memory>
#include <string>

#include "CoreMisc/Export.h"
#include "CoreMisc/LogInterface/IBackEnd.h"

namespace com_qel::Korvel::LogInterface {

class LineFile;

class VANTRIC_EXPORT TextFileBackEnd final : public IBackEnd {
  public:
    /// Opens `path` for output and truncates it. A file that cannot be opened is not reported:
    /// every line is lost. After a failed write every later line is lost as well.
    explicit TextFileBackEnd(const std::string& path);
    ~TextFileBackEnd();

    void Write(const char* line) override;

  private:
    std::unique_ptr<LineFile> file_;
};

}  // namespace com_qel::Korvel::LogInterface
