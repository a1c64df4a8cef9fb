// Names that could break a parser or a terminal.
#include <gtest/gtest.h>

#include "ctl/Output.h"
#include "tests/ctl/CtlRun.h"
#include "tests/support/PublishedServer.h"

namespace {

using namespace vantric_test;

// The last one fills its field and leaves no room for a NUL.
const Words names = {"\"quoted\", \\ and }]", "\x1b[2J\x07 bell\r\n",
                     "\xff\xfe\xc3(",         "\xc3\xa9\xe6\x9d\xb1",
                     "\xe2\x80\xae evil",     "\xc2\x9b" + std::string("31m"),
                     std::string(33, '\x80')};

TEST(HostileNames, keepTheirBytesInJsonThatEveryParserAccepts) {
    PublishedServer server;
    server.publishAt(secondsNow());
    auto list = wifiListOf({70, 60, 50, 40, 30, 20, 10}, 1);
    for (std::size_t index = 0; index < names.size(); ++index) {
        setText(list.entries[index].ssid, names[index]);
    }
    server.wifiList.publish(list);
    server.answer([&](const Frame&) {
        ++list.updateCounter;
        server.wifiList.publish(list);
    });
    const CtlResult result = runForJson({"scan"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const Json& networks = result.json["networks"];
    ASSERT_EQ(networks.size(), names.size());
    for (std::size_t index = 0; index < names.size(); ++index) {
        EXPECT_EQ(networks[index]["ssidHex"], vantricctl::hexadecimal(names[index]));
    }
    EXPECT_EQ(networks[0]["ssid"], names[0]);
    EXPECT_EQ(networks[1]["ssid"], names[1]);

    const std::string table = run(vantric_test::vantricctl({"scan"})).output;
    EXPECT_NE(table.find("\xc3\xa9\xe6\x9d\xb1\n"), std::string::npos);
    EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 8);
    for (const char* unsafe : {"\x1b", "\x07", "\r", "\xff", "\xe2\x80\xae", "\xc2\x9b", "\x80"}) {
        EXPECT_EQ(table.find(unsafe), std::string::npos) << vantricctl::hexadecimal(unsafe);
    }
}

TEST(Text, escapesWhatIsNotSafeUtf8) {
    using vantricctl::shown;
    EXPECT_EQ(shown("caf\xc3\xa9 \\"), "caf\xc3\xa9 \\\\");
    EXPECT_EQ(shown("\x1f\x7f\xc2\x85"), "\\x1f\\x7f\\xc2\\x85");
    EXPECT_EQ(shown("\xc0\xaf"), "\\xc0\\xaf") << "overlong";
    EXPECT_EQ(shown("\xe0\x80\xaf"), "\\xe0\\x80\\xaf") << "overlong";
    EXPECT_EQ(shown("\xed\xa0\x80"), "\\xed\\xa0\\x80") << "surrogate";
    EXPECT_EQ(shown("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80") << "above Unicode";
    EXPECT_EQ(shown("\xf0\x9f\x98\x80\xe6\x9d"), "\xf0\x9f\x98\x80\\xe6\\x9d") << "cut";
}

}  // namespace
