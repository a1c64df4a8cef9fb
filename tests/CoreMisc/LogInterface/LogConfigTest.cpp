#include <gtest/gtest.h>

#include "CoreMisc/LogInterface/LogConfig.h"
#include "tests/CoreMisc/LogTestSupport.h"

using com_qel::Korvel::LogInterface::LogConfig;
using vantric_test::LogSettings;

namespace {

// Defaults that are nobody's usual ones and no fallback either.
constexpr uint32_t defaultLevel = 5;
constexpr uint32_t defaultType = 4;
constexpr uint32_t defaultSize = 77;

LogConfig configFrom(const LogSettings& settings) {
    const vantric_test::LogEnvironment environment(settings);
    return {defaultLevel, defaultType, "default/root", "default name", defaultSize};
}

uint32_t levelFrom(const std::string& text) {
    return configFrom({{"VRAX_LOG_LEVEL", text}}).level;
}

uint32_t typeFrom(const std::string& text) {
    return configFrom({{"VRAX_LOG_TYPE", text}}).type;
}

uint32_t sizeFrom(const std::string& text) {
    return configFrom({{"VRAX_LOG_SIZE", text}}).size;
}

}  // namespace

TEST(LogConfig, takesTheDefaultsWithoutAnyVariable) {
    const LogConfig config = configFrom({});
    EXPECT_EQ(config.level, defaultLevel);
    EXPECT_EQ(config.type, defaultType);
    EXPECT_EQ(config.root, "default/root");
    EXPECT_EQ(config.name, "default name");
    EXPECT_EQ(config.size, defaultSize);
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

TEST(LogConfig, knowsTheLevelsByName) {
    EXPECT_EQ(levelFrom("trace"), 0U);
    EXPECT_EQ(levelFrom("debug"), 1U);
    EXPECT_EQ(levelFrom("info"), 2U);
    EXPECT_EQ(levelFrom("warning"), 3U);
    EXPECT_EQ(levelFrom("error"), 4U);
    const vantric_test::LogEnvironment environment(LogSettings{{"VRAX_LOG_LEVEL", "fatal"}});
    EXPECT_EQ(LogConfig(0, 0, "", "", 0).level, 5U);
}

TEST(LogConfig, takesALevelAsANumber) {
    EXPECT_EQ(levelFrom("0"), 0U);
    EXPECT_EQ(levelFrom("1"), 1U);
    EXPECT_EQ(levelFrom("2"), 2U);
    EXPECT_EQ(levelFrom("3"), 3U);
    EXPECT_EQ(levelFrom("4"), 4U);
    const vantric_test::LogEnvironment environment(LogSettings{{"VRAX_LOG_LEVEL", "5"}});
    EXPECT_EQ(LogConfig(0, 0, "", "", 0).level, 5U);
}

TEST(LogConfig, readsALevelWithLeadingBlanksAndSignAndTrailingText) {
    EXPECT_EQ(levelFrom(" 3x"), 3U);
    EXPECT_EQ(levelFrom("\t+4"), 4U);
    EXPECT_EQ(levelFrom("-0"), 0U);
    EXPECT_EQ(levelFrom("010"), defaultLevel);
    EXPECT_EQ(levelFrom("0x3"), 0U);
    EXPECT_EQ(levelFrom("2.9"), 2U);
}

TEST(LogConfig, keepsTheDefaultForALevelOutOfRange) {
    EXPECT_EQ(levelFrom("6"), defaultLevel);
    EXPECT_EQ(levelFrom("7"), defaultLevel);
    EXPECT_EQ(levelFrom("-1"), defaultLevel);
}

TEST(LogConfig, keepsTheDefaultForALevelBeyondThirtyTwoBits) {
    EXPECT_EQ(levelFrom("4294967299"), defaultLevel);
    EXPECT_EQ(levelFrom("-4294967293"), defaultLevel);
    EXPECT_EQ(levelFrom("18446744073709551617"), defaultLevel);
    EXPECT_EQ(levelFrom("-18446744073709551617"), defaultLevel);
}

TEST(LogConfig, takesALevelThatIsNoNumberForTrace) {
    EXPECT_EQ(levelFrom(""), 0U);
    EXPECT_EQ(levelFrom("TRACE"), 0U);
    EXPECT_EQ(levelFrom("Error"), 0U);
    EXPECT_EQ(levelFrom("error "), 0U);
    EXPECT_EQ(levelFrom(" error"), 0U);
    EXPECT_EQ(levelFrom("errors"), 0U);
    EXPECT_EQ(levelFrom("warn"), 0U);
}

TEST(LogConfig, knowsTheTypesByName) {
    EXPECT_EQ(typeFrom("text_file"), 0U);
    EXPECT_EQ(typeFrom("rolling_text_file"), 1U);
    EXPECT_EQ(typeFrom("console"), 2U);
    EXPECT_EQ(typeFrom("inmemory"), 3U);
    const vantric_test::LogEnvironment environment(LogSettings{{"VRAX_LOG_TYPE", "syslog"}});
    EXPECT_EQ(LogConfig(0, 0, "", "", 0).type, 4U);
}

TEST(LogConfig, takesATypeAsANumber) {
    EXPECT_EQ(typeFrom("0"), 0U);
    EXPECT_EQ(typeFrom("1"), 1U);
    EXPECT_EQ(typeFrom("2"), 2U);
    EXPECT_EQ(typeFrom(" +3 "), 3U);
    const vantric_test::LogEnvironment environment(LogSettings{{"VRAX_LOG_TYPE", "4"}});
    EXPECT_EQ(LogConfig(0, 0, "", "", 0).type, 4U);
}

TEST(LogConfig, keepsTheDefaultForATypeOutOfRange) {
    EXPECT_EQ(typeFrom("5"), defaultType);
    EXPECT_EQ(typeFrom("9"), defaultType);
    EXPECT_EQ(typeFrom("-1"), defaultType);
    EXPECT_EQ(typeFrom("4294967296"), defaultType);
}

TEST(LogConfig, takesATypeThatIsNoNumberForATextFile) {
    EXPECT_EQ(typeFrom(""), 0U);
    EXPECT_EQ(typeFrom("CONSOLE"), 0U);
    EXPECT_EQ(typeFrom("console "), 0U);
}

TEST(LogConfig, takesRootAndNameAsTheyStand) {
    const LogConfig config =
        configFrom({{"VRAX_LOG_ROOT", " /a//b/../ "}, {"VRAX_LOG_NAME", "x/y\n.log"}});
    EXPECT_EQ(config.root, " /a//b/../ ");
    EXPECT_EQ(config.name, "x/y\n.log");
}

TEST(LogConfig, takesAnEmptyRootAndNameForSet) {
    const LogConfig config = configFrom({{"VRAX_LOG_ROOT", ""}, {"VRAX_LOG_NAME", ""}});
    EXPECT_EQ(config.root, "");
    EXPECT_EQ(config.name, "");
}

TEST(LogConfig, takesASizeAsANumber) {
    EXPECT_EQ(sizeFrom("0"), 0U);
    EXPECT_EQ(sizeFrom("5000"), 5000U);
    EXPECT_EQ(sizeFrom(" +12x"), 12U);
    EXPECT_EQ(sizeFrom("4294967295"), 4294967295U);
}

TEST(LogConfig, takesASizeThatIsNoNumberForZero) {
    EXPECT_EQ(sizeFrom("abc"), 0U);
    EXPECT_EQ(sizeFrom(""), 0U);
}

TEST(LogConfig, truncatesASizeToThirtyTwoBits) {
    // Where long has 32 bits, the conversion itself stops at the greatest number.
    constexpr bool longHas64Bits = sizeof(long) == 8;
    EXPECT_EQ(sizeFrom("5000000000"), longHas64Bits ? 705032704U : 4294967295U);
    EXPECT_EQ(sizeFrom("-1"), 4294967295U);
    EXPECT_EQ(sizeFrom("-2"), 4294967294U);
    EXPECT_EQ(sizeFrom("99999999999999999999999"), 4294967295U);
}
