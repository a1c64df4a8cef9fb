// Passes record texts to the system log, which adds its own time stamp and level.
//
// Whoever adds the sink calls openlog() first. Thread-safe, as syslog() is. The system log's
// failures are not seen.
#pragma once

#include "CoreMisc/LogInterface/ISink.h"

namespace com_qel::Korvel::LogInterface {

class SyslogSink final : public ISink {
  public:
    // Logs trace and debug as LOG_DEBUG, info as LOG_INFO, warning as LOG_WARNING, error as
    // LOG_ERR, fatal as LOG_CRIT, and a value that is no severity as LOG_INFO. Never interprets "%"
    // in `text`.
    void Write(Severity severity, const char* text) override;
};

}  // namespace com_qel::Korvel::LogInterface
