#include <gtest/gtest.h>
#include <syslog.h>

#include "CoreMisc/LogInterface/SyslogSink.h"
#include "tests/CoreMisc/SystemLogRecorder.h"

using namespace com_qel::Korvel::LogInterface;
using vantric_test::systemLog;

namespace {

vantric_test::SystemLogEntry entryFor(uint32_t severity, const char* text) {
    systemLog().entries.clear();
    SyslogSink sink;
    sink.Write(static_cast<Severity>(severity), text);
    EXPECT_EQ(systemLog().entries.size(), 1U);
    return systemLog().entries.at(0);
}

}  // namespace

TEST(SyslogSink, mapsEverySeverityToAPriorityAndAnyOtherToInformation) {
    const int priorities[] = {LOG_DEBUG, LOG_DEBUG, LOG_INFO, LOG_WARNING,
                              LOG_ERR,   LOG_CRIT,  LOG_INFO, LOG_INFO};
    for (uint32_t severity = 0; severity < 8; ++severity) {
        EXPECT_EQ(entryFor(severity, "text").priority, priorities[severity]);
    }
    EXPECT_EQ(entryFor(0xFFFFFFFF, "text").priority, LOG_INFO);
}

TEST(SyslogSink, sendsTheTextAsItIsAndOpensNothing) {
    systemLog().openings.clear();
    const vantric_test::SystemLogEntry entry = entryFor(4, "  ERROR|100%s %n %5000d %%");
    EXPECT_EQ(entry.format, "%s");
    EXPECT_EQ(entry.text, "  ERROR|100%s %n %5000d %%");
    EXPECT_TRUE(systemLog().openings.empty());
}
