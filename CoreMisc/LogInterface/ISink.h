/// \class com_qel::Korvel::LogInterface::ISink
/// Receives every record that passed the logger's threshold.
///
/// Ownership: a sink cannot be deleted through this interface. Those of the logger live until the
/// process ends.
/// Thread-safety: Write() may be called from any thread; an implementation does its own locking.
#pragma once

#include "CoreMisc/Export.h"
#include "CoreMisc/LogInterface/Logger.h"

namespace com_qel::Korvel::LogInterface {

class VANTRIC_EXPORT ISink {
  public:
    ISink(const ISink&) = delete;
    ISink& operator=(const ISink&) = delete;

    /// Takes one record. `severity` may have any value. `text` is the record's text without
    /// time stamp and severity, NUL-terminated, and is not kept.
    virtual void Write(Severity severity, const char* text) = 0;

  protected:
    ISink() = default;
    ~ISink() = default;
};

}  // namespace com_qel::Korvel::LogInterface
