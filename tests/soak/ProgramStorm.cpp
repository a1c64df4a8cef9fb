#include <algorithm>
#include <cinttypes>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "Vantric/ModemClient.h"
#include "tests/soak/ExchangeCounters.h"
#include "tests/soak/KillStorm.h"
#include "tests/soak/Randomness.h"
#include "tests/support/ChildProcess.h"

namespace vantric_soak {

namespace {

using com_qel::Orvane::Vantric::ModemClient;
using vantric_test::ChildProcess;
using vantric_test::Command;

constexpr uint32_t killsPerExchange = 50;

// One run connects this often.
constexpr std::size_t optionsOfARun = 40;

const std::string freshConnectivity = "Current connectivity is: ";

class ProgramStorm {
  public:
    ProgramStorm(const KillStormSize& size, uint64_t seed, Supervision& supervision)
        : size_(size),
          randomness_(seed),
          supervision_(supervision),
          simulator_(Command{size.simulatorPath, {}, {}, {}, {}}) {
        require(simulator_.waitForOutput("ready"), "vantricsim did not start");
        semaphores_ = std::make_unique<ExchangeSemaphores>();
        require(live_.connect(), "the first client could not connect");
        last_ = ExchangeCounters(*semaphores_);
    }

    void run() {
        measureRun();
        while (deaths_ < size_.killedPrograms) {
            if (killOne() && deaths_ % killsPerExchange == 0) {
                exchangeAfresh();
            }
            supervision_.check();
            supervision_.show([this] {
                return std::to_string(deaths_) + " of " + std::to_string(size_.killedPrograms) +
                       " programs killed";
            });
        }
        exchangeAfresh();
        finish();
    }

  private:
    Command probe(std::size_t options) const {
        return {size_.probePath, std::vector<std::string>(options, "--enablewifi"), {}, {}, {}};
    }

    void measureRun() {
        constexpr int runs = 5;
        run_ = Clock::duration::max();
        for (int count = 0; count < runs; ++count) {
            const auto start = Clock::now();
            const auto result = vantric_test::run(probe(optionsOfARun));
            run_ = std::min(run_, Clock::now() - start);
            require(result.status && result.status->code() == 0, "vantricprobe did not end well");
            settle();
        }
        for (const int64_t attached : grown_) {
            require(attached == runs * static_cast<int64_t>(optionsOfARun),
                    "a disconnected client should have left its attachment");
        }
        cutShort_ = 0;
        leftTaken_ = {};
    }

    // False when the program was faster.
    bool killOne() {
        ChildProcess program(probe(optionsOfARun));
        const auto end = Clock::now() + run_ * randomness_.below(1000) / 1000;
        while (Clock::now() < end) {
        }
        program.sendSignal(SIGKILL);
        const auto status = program.wait();
        require(status.has_value(), "a killed program did not end");
        settle();
        const bool wasKilled = status->signal() == SIGKILL;
        deaths_ += wasKilled ? 1 : 0;
        return wasKilled;
    }

    // Programs connect in the order of the objects and never detach, so the counts can only rise
    // and differ by the one connection that death has cut short.
    void settle() {
        const ExchangeCounters now(*semaphores_);
        std::array<int64_t, objectCount> risen = {};
        for (std::size_t object = 0; object < objectCount; ++object) {
            risen.at(object) = now.attached.at(object) - last_.attached.at(object);
            grown_.at(object) += risen.at(object);
            require(risen.at(object) >= 0 && risen.at(object) <= risen.front() &&
                        risen.at(object) >= risen.front() - 1 &&
                        (object == 0 || risen.at(object) <= risen.at(object - 1)),
                    std::string("the attach count of ") + objectNames.at(object) +
                        " does not follow from connecting in order");
        }
        const int64_t producers = now.producers - last_.producers;
        require(producers == risen.back() || producers == risen.back() - 1,
                "the count of producers does not follow the attach count");
        const bool isCutShort = risen.front() != producers;
        cutShort_ += isCutShort ? 1 : 0;
        for (std::size_t lock = 0; lock < lockCount; ++lock) {
            const int value = now.semaphores.at(lock);
            require(value >= 0 && value <= (isProviderLock(lock) ? 1 : 2),
                    lockName(lock) + " stands at " + std::to_string(value));
            leftTaken_.at(lock) += value == 0 && last_.semaphores.at(lock) != 0 ? 1 : 0;
        }
        last_ = now;
    }

    void exchangeAfresh() {
        const auto result = vantric_test::run(probe(1));
        require(result.status && result.status->code() == 0 &&
                    result.output.find(freshConnectivity) != std::string::npos &&
                    result.output.find("Failed") == std::string::npos,
                "a fresh vantricprobe could not do its exchange");
        ModemClient fresh;
        std::string hostname;
        require(fresh.connect() && fresh.getHostname(hostname) && hostname == "modem",
                "a fresh client could not read the state");
        const std::string marker = "marker " + std::to_string(++markers_);
        require(fresh.sendTextCommand(marker), "a fresh client could not send");
        require(simulator_.waitForOutput("\"" + marker + "\""),
                "vantricsim did not receive a fresh client's command");
        const auto values = semaphores_->values();
        for (std::size_t lock = 0; lock < lockCount; ++lock) {
            // The simulator may just hold a contents lock; a provider lock nobody does.
            require(!isProviderLock(lock) || values.at(lock) == 1,
                    lockName(lock) + " is still taken after a construction");
        }
        last_ = ExchangeCounters(*semaphores_);
        for (int64_t& attached : last_.attached) {
            --attached;  // the fresh client detaches at once
        }
        --last_.producers;
    }

    void finish() {
        std::printf(
            "kills: %u of vantricprobe, whose run takes %" PRId64
            " ms, while vantricsim went on; %u exchanges of a fresh client and program, all "
            "sound; %.1f s\n",
            deaths_, int64_t{std::chrono::duration_cast<std::chrono::milliseconds>(run_).count()},
            markers_, supervision_.seconds());
        std::printf("  connecting was cut short between the first and the last object %u times\n",
                    cutShort_);
        std::printf("  locks left taken:");
        for (std::size_t lock = 0; lock < lockCount; ++lock) {
            std::printf(" %s %u", lockName(lock).c_str(), leftTaken_.at(lock));
        }
        const ExchangeCounters end(*semaphores_);
        std::printf("\n  attached at the end: %" PRId64 " %" PRId64 " %" PRId64 " %" PRId64
                    ", producers %" PRId64 "\n",
                    end.attached[0], end.attached[1], end.attached[2], end.attached[3],
                    end.producers);
        require(!simulator_.wait(std::chrono::milliseconds(0)).has_value(), "vantricsim has ended");
    }

    const KillStormSize& size_;
    Randomness randomness_;
    Supervision& supervision_;
    ChildProcess simulator_;
    std::unique_ptr<ExchangeSemaphores> semaphores_;
    ModemClient live_;
    ExchangeCounters last_;
    Clock::duration run_{};
    std::array<int64_t, objectCount> grown_ = {};
    std::array<uint32_t, lockCount> leftTaken_ = {};
    uint32_t deaths_ = 0;
    uint32_t markers_ = 0;
    uint32_t cutShort_ = 0;
};

// A storm leaves counters raised, which the next one must not take for its own.
void removeAllObjects() {
    for (const auto& entry : std::filesystem::directory_iterator("/dev/shm")) {
        std::filesystem::remove(entry.path());
    }
}

}  // namespace

void stormPrograms(const KillStormSize& size, uint64_t seed, Supervision& supervision) {
    ProgramStorm storm(size, seed, supervision);
    storm.run();
}

void stormWithKills(const KillStormSize& size, uint64_t seed, Supervision& supervision) {
    stormClients(size.kills, mixed(seed, 1), supervision);
    removeAllObjects();
    stormPrograms(size, mixed(seed, 2), supervision);
}

}  // namespace vantric_soak
