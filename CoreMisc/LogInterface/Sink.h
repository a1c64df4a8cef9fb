/// \class com_qel::Korvel::LogInterface::Sink
/// Formats each record into a line and hands the line to one back-end.
///
/// Ownership: uses the back-end for as long as it lives and never frees it.
/// Thread-safety: any number of threads may write to any number of sinks. Each sink serialises its
/// writes with a mutex of its own. A second mutex, shared by all sinks of the process, is held from
/// formatting to the end of the back-end's write, because formatters may share one line.
/// Formatter and back-end must not write a record: it would wait for these mutexes forever.
#pragma once

#include <mutex>

#include "CoreMisc/Export.h"
#include "CoreMisc/LogInterface/IBackEnd.h"
#include "CoreMisc/LogInterface/ISink.h"

namespace com_qel::Korvel::LogInterface {

class VANTRIC_EXPORT Sink final : public ISink {
  public:
    /// A sink for one back-end. Neither argument may be null.
    Sink(Formatter formatter, IBackEnd* backEnd);

    /// Writes one line. Throws std::system_error when the mutex cannot be locked, and what the
    /// formatter throws.
    void Write(Severity severity, const char* text) override;

  private:
    std::mutex mutex_;
    Formatter formatter_;
    IBackEnd* backEnd_;
};

}  // namespace com_qel::Korvel::LogInterface
