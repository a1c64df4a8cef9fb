#include <gtest/gtest.h>

#include "sim/CommandPayload.h"

namespace {

using namespace vantric_sim;

TEST(CommandPayload, takesAnEncryptionApart) {
    const auto encryption = parseEncryption("2,abcdef");
    ASSERT_TRUE(encryption);
    EXPECT_EQ(encryption->type, 2);
    EXPECT_EQ(encryption->password, "abcdef");
}

TEST(CommandPayload, leavesCommasToThePassword) {
    EXPECT_EQ(parseEncryption("2,a,b,")->password, "a,b,");
    EXPECT_EQ(parseConnection("home,4,p,w")->encryption.password, "p,w");
    EXPECT_EQ(parseRadiusConnection("home,4,user,p,w")->encryption.password, "p,w");
}

TEST(CommandPayload, takesAnyInteger) {
    EXPECT_EQ(parseEncryption("-2147483648,x")->type, INT32_MIN);
    EXPECT_EQ(parseEncryption("99,x")->type, 99);
}

TEST(CommandPayload, takesEmptyTexts) {
    EXPECT_EQ(parseEncryption("1,")->password, "");
    EXPECT_EQ(parseConnection(",1,")->ssid, "");
    EXPECT_EQ(parseRadiusConnection(",1,,")->encryption.password, "");
}

TEST(CommandPayload, refusesAnEncryptionThatIsNone) {
    for (const char* payload :
         {"", "2", "x,y", ",y", "2 ,y", " 2,y", "2x,y", "+2,y", "0x2,y", "2147483648,y"}) {
        EXPECT_FALSE(parseEncryption(payload)) << payload;
    }
}

TEST(CommandPayload, tellsARequestToForgetFromOtherEncryptions) {
    EXPECT_TRUE(parseEncryption("0,0")->isRequestToForget());
    EXPECT_FALSE(parseEncryption("0,")->isRequestToForget());
    EXPECT_FALSE(parseEncryption("1,0")->isRequestToForget());
    EXPECT_FALSE(parseEncryption("0,00")->isRequestToForget());
}

TEST(CommandPayload, takesAConnectionApart) {
    const auto connection = parseConnection("home,4,pw");
    ASSERT_TRUE(connection);
    EXPECT_EQ(connection->ssid, "home");
    EXPECT_EQ(connection->encryption.type, 4);
    EXPECT_EQ(connection->encryption.password, "pw");
}

TEST(CommandPayload, refusesAConnectionThatIsNone) {
    for (const char* payload : {"", "home", "home,4", "home,x,pw", "a,b,4,pw"}) {
        EXPECT_FALSE(parseConnection(payload)) << payload;
    }
}

TEST(CommandPayload, takesARadiusConnectionApart) {
    const auto connection = parseRadiusConnection("home,4,user,pw");
    ASSERT_TRUE(connection);
    EXPECT_EQ(connection->ssid, "home");
    EXPECT_EQ(connection->encryption.type, 4);
    EXPECT_EQ(connection->encryption.password, "pw");
}

TEST(CommandPayload, refusesARadiusConnectionWithoutPassword) {
    EXPECT_FALSE(parseRadiusConnection("home,4,user"));
    EXPECT_FALSE(parseRadiusConnection("home,x,user,pw"));
}

TEST(CommandPayload, namesAConfigurationAfterItsFile) {
    EXPECT_EQ(configurationName("site.cfg"), "site");
    EXPECT_EQ(configurationName("/backup/north site.v2.cfg"), "north site.v2");
    EXPECT_EQ(configurationName("plain"), "plain");
}

TEST(CommandPayload, refusesAConfigurationWithoutFileName) {
    EXPECT_FALSE(configurationName(""));
    EXPECT_FALSE(configurationName("folder/"));
}

}  // namespace
