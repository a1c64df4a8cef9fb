// What each text of the five variables counts as.
#include <gtest/gtest.h>

#include <initializer_list>

#include "CoreMisc/LogInterface/LogConfig.h"
#include "tests/CoreMisc/LogTestSupport.h"

using com_qel::Korvel::LogInterface::LogConfig;
using vantric_test::LogSettings;

namespace {

// No level, type or usual size, so a default is not mistaken for a value that was read.
constexpr uint32_t byDefault = 77;

LogConfig configFrom(const LogSettings& settings) {
    const vantric_test::LogEnvironment environment(settings);
    return {byDefault, byDefault, "default/root", "default name", byDefault};
}

uint32_t levelFrom(const char* text) {
    return configFrom({{"VRAX_LOG_LEVEL", text}}).level;
}

uint32_t typeFrom(const char* text) {
    return configFrom({{"VRAX_LOG_TYPE", text}}).type;
}

uint32_t sizeFrom(const char* text) {
    return configFrom({{"VRAX_LOG_SIZE", text}}).size;
}

// Every text counts as this value.
void expect(uint32_t value, uint32_t (*valueFrom)(const char*),
            std::initializer_list<const char*> texts) {
    for (const char* text : texts) {
        EXPECT_EQ(valueFrom(text), value) << text;
    }
}

}  // namespace

TEST(LogConfig, takesTheDefaultsWithoutAnyVariable) {
    const LogConfig config = configFrom({});
    EXPECT_EQ(config.level, byDefault);
    EXPECT_EQ(config.type, byDefault);
    EXPECT_EQ(config.root, "default/root");
    EXPECT_EQ(config.name, "default name");
    EXPECT_EQ(config.size, byDefault);
}

TEST(LogConfig, takesEachSettingFromItsOwnVariable) {
    const LogConfig config = configFrom({{"VRAX_LOG_LEVEL", "info"},
                                         {"VRAX_LOG_TYPE", "rolling_text_file"},
                                         {"VRAX_LOG_ROOT", "some root"},
                                         {"VRAX_LOG_NAME", "some name"},
                                         {"VRAX_LOG_SIZE", "123"}});
    EXPECT_EQ(config.level, 2U);
    EXPECT_EQ(config.type, 1U);
    EXPECT_EQ(config.root, "some root");
    EXPECT_EQ(config.name, "some name");
    EXPECT_EQ(config.size, 123U);
}

TEST(LogConfig, takesALevelByNameOrByNumberWithAnythingAfterIt) {
    expect(0, levelFrom, {"trace", "0", "-0"});
    expect(1, levelFrom, {"debug", "1"});
    expect(2, levelFrom, {"info", "2", "2.9"});
    expect(3, levelFrom, {"warning", "3", "3x"});
    expect(4, levelFrom,
           {"error", "4", "+4", "\t\n\v\f\r 4", "4 ", "4trace", "00000000000000000004"});
    expect(5, levelFrom, {"fatal", "5"});
}

TEST(LogConfig, keepsTheDefaultForALevelOutOfRange) {
    expect(byDefault, levelFrom,
           {"6", "010", "-1", "256", "4294967299", "-4294967293", "9223372036854775808",
            "18446744073709551617", "-18446744073709551617"});
}

TEST(LogConfig, takesALevelThatIsNoNumberForTrace) {
    expect(0, levelFrom,
           {"", " ", "TRACE", "Error", " error", "error ", "error\n", "warn", "error4", "+ 4",
            "--4", "+-4", "0x4", "'4'", "\xEF\xBC\x94"});
}

TEST(LogConfig, takesATypeByNameOrByNumberWithAnythingAfterIt) {
    expect(0, typeFrom, {"text_file", "0"});
    expect(1, typeFrom, {"rolling_text_file", "1"});
    expect(2, typeFrom, {"console", "2"});
    expect(3, typeFrom, {"inmemory", " +3 ", "3console"});
    expect(4, typeFrom, {"syslog", "4"});
}

TEST(LogConfig, takesAnyOtherTypeForTheDefaultOrATextFile) {
    expect(byDefault, typeFrom, {"5", "9", "-1", "4294967296"});
    expect(0, typeFrom, {"", "CONSOLE", " console", "console ", "rolling", "in_memory", "0x4"});
}

TEST(LogConfig, takesASizeAsANumberOf32Bits) {
    // Where long has 32 bits, the conversion itself stops at the greatest number.
    constexpr bool longHas64Bits = sizeof(long) == 8;
    constexpr uint32_t greatest = 4294967295U;
    expect(5000, sizeFrom, {"5000"});
    expect(12, sizeFrom, {"\t\n\v\f\r +12", "012", "12x", "12.9", "12,000"});
    expect(2147483648U, sizeFrom, {"2147483648"});
    expect(greatest, sizeFrom,
           {"4294967295", "-1", "99999999999999999999", "-99999999999999999999"});
    expect(greatest - 1, sizeFrom, {"-2"});
    expect(longHas64Bits ? 0 : greatest, sizeFrom, {"4294967296"});
    expect(longHas64Bits ? 705032704U : greatest, sizeFrom, {"5000000000"});
    expect(0, sizeFrom, {"0", "", " ", "abc", "x5000", "+ 5000", "--1", "0x5000"});
}

TEST(LogConfig, takesRootAndNameAsTheyStandEvenEmpty) {
    const LogConfig config =
        configFrom({{"VRAX_LOG_ROOT", " /a//b/../ "}, {"VRAX_LOG_NAME", "x/y\n\xFF$PWD"}});
    EXPECT_EQ(config.root, " /a//b/../ ");
    EXPECT_EQ(config.name, "x/y\n\xFF$PWD");
    const LogConfig empty = configFrom({{"VRAX_LOG_ROOT", ""}, {"VRAX_LOG_NAME", ""}});
    EXPECT_EQ(empty.root, "");
    EXPECT_EQ(empty.name, "");
}
