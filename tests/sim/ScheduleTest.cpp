#include <gtest/gtest.h>

#include <string>

#include "sim/Schedule.h"

namespace {

using namespace std::chrono_literals;
using vantric_sim::Schedule;
using vantric_sim::SteadyTime;

constexpr SteadyTime start(1h);

TEST(Schedule, runsWorkWhenItIsDueAndOnlyOnce) {
    Schedule schedule;
    int runs = 0;
    schedule.add(start + 10ms, [&] { ++runs; });
    schedule.runDue(start + 9ms);
    EXPECT_EQ(runs, 0);
    schedule.runDue(start + 10ms);
    schedule.runDue(start + 11ms);
    EXPECT_EQ(runs, 1);
}

TEST(Schedule, runsWorkInOrderOfTimeThenOfArrival) {
    Schedule schedule;
    std::string order;
    schedule.add(start + 2ms, [&] { order += "c"; });
    schedule.add(start + 1ms, [&] { order += "a"; });
    schedule.add(start + 1ms, [&] { order += "b"; });
    schedule.runDue(start + 5ms);
    EXPECT_EQ(order, "abc");
}

TEST(Schedule, runsWhatItsWorkAddsWhenThatIsDueAlready) {
    Schedule schedule;
    bool ran = false;
    schedule.add(start, [&] { schedule.add(start, [&] { ran = true; }); });
    schedule.runDue(start);
    EXPECT_TRUE(ran);
}

TEST(Schedule, forgetsClearedWork) {
    Schedule schedule;
    bool ran = false;
    schedule.add(start, [&] { ran = true; });
    schedule.clear();
    schedule.runDue(start + 1h);
    EXPECT_FALSE(ran);
}

}  // namespace
