// A simulated server on a clock that the test moves, and a client's view of it: real segments, no
// waiting.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "Vantric/ClientServer/SharedMemoryModemState.h"
#include "sim/CommandTable.h"
#include "sim/ScenarioFile.h"
#include "sim/SimulatedServer.h"

namespace vantric_test {

using namespace std::chrono_literals;
using com_qel::Orvane::Vantric::fieldText;
using vantric_sim::ModemCommand;

class ServerFixture {
  public:
    // Starts a server. The client attaches before it.
    explicit ServerFixture(const std::string& scenario = "{}")
        : ServerFixture(vantric_sim::parseScenario(scenario)) {}
    explicit ServerFixture(const vantric_sim::Scenario& scenario)
        : server_(std::make_unique<vantric_sim::SimulatedServer>(
              scenario, [this](const std::string& line) { lines_.push_back(line); })) {
        server_->start(now_);
    }

    // Moves the clock in small steps, letting the server do what is due at each; false as soon as
    // the server is over.
    bool advance(std::chrono::milliseconds duration) {
        constexpr std::chrono::milliseconds smallStep(5);
        const auto end = now_ + duration;
        while (now_ < end) {
            now_ = std::min<vantric_sim::SteadyTime>(now_ + smallStep, end);
            if (!server_->step(now_)) {
                return false;
            }
        }
        return true;
    }

    void send(ModemCommand command, std::string_view payload = {}) {
        sendNumber(static_cast<uint32_t>(command), payload);
    }

    void sendNumber(uint32_t command, std::string_view payload) {
        commands_.enqueue(command, payload.data(), static_cast<uint32_t>(payload.size()));
    }

    void stopServer() { server_.reset(); }

    // Empty when nothing is published.
    std::optional<com_qel::Orvane::Vantric::ModemState> state() { return recordOf(stateSegment); }
    std::optional<com_qel::Orvane::Vantric::ModemStateExtended> extended() {
        return recordOf(extendedSegment);
    }
    std::optional<com_qel::Orvane::Vantric::WifiInfosList> networks() {
        return recordOf(networksSegment);
    }

    // Lines so far, without their time stamps.
    std::vector<std::string> lines() const {
        constexpr std::size_t stampLength = 24;
        std::vector<std::string> result;
        for (const std::string& line : lines_) {
            result.push_back(line.substr(stampLength));
        }
        return result;
    }

    com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemState stateSegment;
    com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemStateExtended extendedSegment;
    com_qel::Orvane::Vantric::ClientServer::SharedMemoryWifiList networksSegment;

  private:
    template <class T, class Provider>
    static std::optional<T> recordOf(
        com_qel::Orvane::Vantric::ClientServer::SharedMemoryLayout<T, Provider>& segment) {
        T record;
        if (!segment.read(record)) {
            return std::nullopt;
        }
        return record;
    }

    com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemCommands commands_{false};
    std::vector<std::string> lines_;
    vantric_sim::SteadyTime now_ = vantric_sim::SteadyTime(1h);
    std::unique_ptr<vantric_sim::SimulatedServer> server_;
};

inline int64_t secondsSinceEpoch() {
    using std::chrono::seconds;
    return std::chrono::duration_cast<seconds>(std::chrono::system_clock::now().time_since_epoch())
        .count();
}

}  // namespace vantric_test
