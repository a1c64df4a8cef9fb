// A connected client and a server that answers its requests.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <limits>
#include <vector>

#include "Vantric/ModemClient.h"
#include "tests/support/PublishedServer.h"

namespace vantric_test {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr int32_t lowest = std::numeric_limits<int32_t>::min();
constexpr int32_t highest = std::numeric_limits<int32_t>::max();
constexpr uint32_t patience = 30;  // seconds; far more than any answer here takes

template <class Action>
Clock::duration timeOf(Action action) {
    const Clock::time_point start = Clock::now();
    action();
    return Clock::now() - start;
}

inline Vantric::WifiInfo someNetwork() {
    Vantric::WifiInfo info = {};
    setText(info.ssid, "from the caller");
    return info;
}

class ModemClientBlocking : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(client.connect()); }

    void answerWith(const Vantric::WifiInfosList& found) {
        server.answer([this, found](const Frame&) { server.wifiList.publish(found); });
    }

    void answerWith(const Vantric::ModemStateExtended& refreshed) {
        server.answer([this, refreshed](const Frame&) { server.extendedState.publish(refreshed); });
    }

    PublishedServer server;
    Vantric::ModemClient client;
    std::vector<Vantric::WifiInfo> list = {someNetwork()};
    Vantric::ModemStatus status = {};
};

}  // namespace vantric_test
