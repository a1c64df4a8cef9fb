// Formats each record into a line and hands the line to one back-end.
//
// Ownership: uses the back-end for as long as it lives and never frees it.
// Thread-safety: the sink's mutex serialises formatter and back-end, so it also guards the
// formatter's shared line.
#pragma once

#include <mutex>

#include "CoreMisc/LogInterface/IBackEnd.h"
#include "CoreMisc/LogInterface/ISink.h"

namespace com_qel::Korvel::LogInterface {

class Sink final : public ISink {
  public:
    // A sink for one back-end. Neither argument may be null.
    Sink(Formatter formatter, IBackEnd* backEnd);

    // Writes one line. Throws std::system_error when the mutex cannot be locked, and what the
    // formatter throws.
    void Write(Severity severity, const char* text) override;

  private:
    std::mutex mutex_;
    Formatter formatter_;
    IBackEnd* backEnd_;
};

}  // namespace com_qel::Korvel::LogInterface
