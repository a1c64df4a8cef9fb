#include <gtest/gtest.h>
#include <syslog.h>

#include "CoreMisc/LogInterface/SyslogSink.h"
#include "tests/CoreMisc/SystemLogRecorder.h"

using com_qel::Korvel::LogInterface::Severity;
using com_qel::Korvel::LogInterface::SyslogSink;
using vantric_test::systemLog;

namespace {

vantric_test::SystemLogEntry entryFor(uint32_t severity, const char* text) {
    systemLog().entries.clear();
    SyslogSink sink;
    sink.Write(static_cast<Severity>(severity), text);
    EXPECT_EQ(systemLog().entries.size(), 1U);
    return systemLog().entries.at(0);
}

int priorityOf(uint32_t severity) {
    return entryFor(severity, "text").priority;
}

}  // namespace

TEST(SyslogSink, mapsEverySeverityToAPriority) {
    EXPECT_EQ(priorityOf(0), LOG_DEBUG);
    EXPECT_EQ(priorityOf(1), LOG_DEBUG);
    EXPECT_EQ(priorityOf(2), LOG_INFO);
    EXPECT_EQ(priorityOf(3), LOG_WARNING);
    EXPECT_EQ(priorityOf(4), LOG_ERR);
    EXPECT_EQ(priorityOf(5), LOG_CRIT);
}

TEST(SyslogSink, sendsAnyOtherSeverityAsInformation) {
    EXPECT_EQ(priorityOf(6), LOG_INFO);
    EXPECT_EQ(priorityOf(9), LOG_INFO);
    EXPECT_EQ(priorityOf(0xFFFFFFFF), LOG_INFO);
}

TEST(SyslogSink, addsNothingToTheText) {
    EXPECT_EQ(entryFor(4, "  ERROR|text").text, "  ERROR|text");
}

TEST(SyslogSink, neverInterpretsPercentSigns) {
    const vantric_test::SystemLogEntry entry = entryFor(4, "100%s %n %5000d %%");
    EXPECT_EQ(entry.format, "%s");
    EXPECT_EQ(entry.text, "100%s %n %5000d %%");
}

TEST(SyslogSink, opensNothingItself) {
    systemLog().openings.clear();
    entryFor(4, "text");
    EXPECT_TRUE(systemLog().openings.empty());
}
