// Which time stamps the client takes, by the second.
#include <gtest/gtest.h>

#include <cstdint>
#include <ctime>
#include <limits>

#include "Vantric/ModemClient.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/WallClockAt.h"

namespace {

using com_qel::Orvane::Vantric::ModemClient;
using namespace vantric_test;

class ModemClientStaleness : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(client.connect()); }

    bool isReadableAtTheAgeOf(int32_t seconds) {
        constexpr int32_t now = 1'900'000'000;
        server.publishAt(now - seconds);
        return isReadableAt(now);
    }

    // Whether what is published can be read when the wall clock shows that second.
    bool isReadableAt(int64_t now) {
        const WallClockAt clock(now);
        return client.getConnectivityType(number);
    }

    PublishedServer server;
    ModemClient client;
    int32_t number = -1;
};

TEST_F(ModemClientStaleness, acceptsAStateOfExactlyThreeHundredSeconds) {
    EXPECT_TRUE(isReadableAtTheAgeOf(300));
}

TEST_F(ModemClientStaleness, refusesAStateOfThreeHundredAndOneSeconds) {
    EXPECT_FALSE(isReadableAtTheAgeOf(301));
}

TEST_F(ModemClientStaleness, acceptsAStateFromTheFuture) {
    EXPECT_TRUE(isReadableAtTheAgeOf(-10));
    server.publishAt(std::numeric_limits<int32_t>::max());
    EXPECT_TRUE(client.getConnectivityType(number));
}

TEST_F(ModemClientStaleness, refusesAStateFromBeforeTheEpoch) {
    for (const int32_t timestamp : {0, -1, std::numeric_limits<int32_t>::min()}) {
        server.publishAt(timestamp);
        EXPECT_FALSE(client.getConnectivityType(number)) << timestamp;
    }
}

constexpr int32_t lastStamp = std::numeric_limits<int32_t>::max();  // 19 January 2038, 03:14:07 UTC

TEST_F(ModemClientStaleness, acceptsAStateInTheLastSecondThatAStampCanShow) {
    server.publishAt(lastStamp);
    EXPECT_TRUE(isReadableAt(lastStamp));
}

TEST_F(ModemClientStaleness, refusesAStampThatHasWrappedAfterJanuary2038) {
    server.publishAt(std::numeric_limits<int32_t>::min());
    EXPECT_FALSE(isReadableAt(int64_t{lastStamp} + 1));
    server.publishAt(std::numeric_limits<int32_t>::min() + 1000);
    EXPECT_FALSE(isReadableAt(int64_t{lastStamp} + 1001));
}

TEST_F(ModemClientStaleness,
       acceptsTheLastStampAfterJanuary2038WhileItIsYoungWhereTheClockCanBeRead) {
    constexpr bool canReadClock = sizeof(time_t) > sizeof(int32_t);
    server.publishAt(lastStamp);
    EXPECT_EQ(isReadableAt(int64_t{lastStamp} + 300), canReadClock);
    EXPECT_FALSE(isReadableAt(int64_t{lastStamp} + 301));
}

}  // namespace
