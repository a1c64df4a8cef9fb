/// \class com_qel::Korvel::LogInterface::SyslogSink
/// Passes record texts to the system log, which adds its own time stamp and level.
///
/// The logger calls openlog() before it adds the sink; without that call, the C library's defaults
/// hold.
/// Thread-safety: as syslog(). A record that the system log does not take is lost without a report.
#pragma once

#include "CoreMisc/Export.h"
#include "CoreMisc/LogInterface/ISink.h"

namespace com_qel::Korvel::LogInterface {

class VANTRIC_EXPORT SyslogSink final : public ISink {
  public:
    /// Logs trace and debug as LOG_DEBUG, info as LOG_INFO, warning as LOG_WARNING, error as
    /// LOG_ERR, fatal as LOG_CRIT, and a value that is no severity as LOG_INFO. Never interprets
    /// "%" in `text`.
    void Write(Severity severity, const char* text) override;
};

}  // namespace com_qel::Korvel::LogInterface
