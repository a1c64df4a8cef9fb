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

constexpr int32_t present = 1'900'000'000;
constexpr int32_t firstStamp = std::numeric_limits<int32_t>::min();
constexpr int32_t lastStamp = std::numeric_limits<int32_t>::max();  // 19 January 2038, 03:14:07 UTC
constexpr int64_t afterLastStamp = int64_t{lastStamp} + 1;

class ModemClientStaleness : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(client.connect()); }

    // Whether a state with that stamp can be read when the wall clock shows that second.
    bool isReadable(int32_t stamp, int64_t second) {
        server.publishAt(stamp);
        const WallClockAt clock(second);
        int32_t type = 0;
        return client.getConnectivityType(type);
    }

    PublishedServer server;
    ModemClient client;
};

TEST_F(ModemClientStaleness, acceptsAStateOfExactlyThreeHundredSeconds) {
    EXPECT_TRUE(isReadable(present - 300, present));
}

TEST_F(ModemClientStaleness, refusesAStateOfThreeHundredAndOneSeconds) {
    EXPECT_FALSE(isReadable(present - 301, present));
}

TEST_F(ModemClientStaleness, acceptsAStateFromTheFuture) {
    EXPECT_TRUE(isReadable(present + 10, present));
    EXPECT_TRUE(isReadable(lastStamp, present));
}

TEST_F(ModemClientStaleness, refusesAStateFromBeforeTheEpoch) {
    for (const int32_t stamp : {0, -1, firstStamp}) {
        EXPECT_FALSE(isReadable(stamp, present)) << stamp;
    }
}

TEST_F(ModemClientStaleness, acceptsAStateInTheLastSecondThatAStampCanShow) {
    EXPECT_TRUE(isReadable(lastStamp, lastStamp));
}

TEST_F(ModemClientStaleness, refusesAStampThatHasWrappedAfterJanuary2038) {
    EXPECT_FALSE(isReadable(firstStamp, afterLastStamp));
    EXPECT_FALSE(isReadable(firstStamp + 1000, afterLastStamp + 1000));
}

TEST_F(ModemClientStaleness, acceptsTheLastStampFor300SecondsWhereTheClockCanBeReadThen) {
    constexpr bool canReadClock = sizeof(time_t) > sizeof(int32_t);
    EXPECT_EQ(isReadable(lastStamp, int64_t{lastStamp} + 300), canReadClock);
    EXPECT_FALSE(isReadable(lastStamp, int64_t{lastStamp} + 301));
}

}  // namespace
