/// \class com_qel::Korvel::LogInterface::IBackEnd
/// Puts finished lines somewhere.
///
/// Ownership: a back-end cannot be deleted through this interface. Those of the logger live until
/// the process ends.
/// Thread-safety: none; a Sink calls its back-end under a mutex. A back-end of two sinks is safe as
/// well, because all sinks share that mutex.
#pragma once

#include "CoreMisc/Export.h"

namespace com_qel::Korvel::LogInterface {

class VANTRIC_EXPORT IBackEnd {
  public:
    IBackEnd(const IBackEnd&) = delete;
    IBackEnd& operator=(const IBackEnd&) = delete;

    /// Writes one line. `line` is NUL-terminated, lacks its closing newline and is not kept. A line
    /// that cannot be written is lost without a report.
    virtual void Write(const char* line) = 0;

  protected:
    IBackEnd() = default;
    ~IBackEnd() = default;
};

}  // namespace com_qel::Korvel::LogInterface
