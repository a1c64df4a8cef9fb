// Passes record texts to the system log, which adds its own time stamp and level.
//
// Whoever adds the sink calls openlog() first. Thread-safe, as syslog() is. The system log's
// failures are not seen.
#pragma once

#include "CoreMisc/LogInterface/ISink.h"

namespace com_qel::Korvel::LogInterface {

class SyslogSink final : public ISink {
  public:
    // Never interprets "%" in `text`. A value that is no severity is logged as LOG_INFO.
    void Write(Severity severity, const char* text) override;
};

}  // namespace com_qel::Korvel::LogInterface
