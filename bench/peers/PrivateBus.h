// A message bus of our own: its daemon, and a service process on it that publishes a state and
// takes commands.
#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <systemd/sd-bus.h>

#include "Vantric/ModemState.h"
#include "bench/support/ForkedProcess.h"
#include "bench/support/SharedVariables.h"
#include "tests/support/TemporaryFolder.h"

namespace vantric_bench {

constexpr const char* busService = "org.vantric.bench";
constexpr const char* busObject = "/org/vantric/bench";
constexpr const char* busInterface = "org.vantric.bench.Modem";

class PrivateBus {
  public:
    // Throws std::runtime_error when daemon or service do not come up.
    PrivateBus(const com_qel::Orvane::Vantric::ModemState& published,
               const std::string& expectedPayload);
    ~PrivateBus();

    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    sd_bus* connection() const { return connection_; }

    // The number of commands with the expected payload so far.
    int commandCount() const { return received_->commands; }

  private:
    struct Received {
        std::atomic<int> commands{0};
    };

    void startDaemon();
    void serve(const com_qel::Orvane::Vantric::ModemState& published,
               const std::string& expectedPayload) const;
    sd_bus* connect() const;

    vantric_test::TemporaryFolder folder_;
    SharedVariables<Received> received_;
    std::unique_ptr<ForkedProcess> daemon_;
    std::unique_ptr<ForkedProcess> service_;
    sd_bus* connection_ = nullptr;
};

}  // namespace vantric_bench
