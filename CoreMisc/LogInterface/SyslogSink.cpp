#include "CoreMisc/LogInterface/SyslogSink.h"

#include <syslog.h>

namespace com_qel::Korvel::LogInterface {

namespace {

int priorityOf(Severity severity) {
    static constexpr int priorities[] = {LOG_DEBUG,   LOG_DEBUG, LOG_INFO,
                                         LOG_WARNING, LOG_ERR,   LOG_CRIT};
    return severity <= SeverityFatal ? priorities[severity] : LOG_INFO;
}

}  // namespace

void SyslogSink::Write(Severity severity, const char* text) {
    syslog(priorityOf(severity), "%s", text);
}

}  // namespace com_qel::Korvel::LogInterface
