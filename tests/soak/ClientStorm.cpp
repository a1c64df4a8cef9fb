#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cinttypes>
#include <csignal>
#include <cstdio>
#include <memory>
#include <string>

#include "Vantric/ModemClient.h"
#include "tests/soak/DeathTally.h"
#include "tests/soak/ExchangeCounters.h"
#include "tests/soak/KillStorm.h"
#include "tests/soak/Randomness.h"
#include "tests/soak/RecordPattern.h"
#include "tests/soak/StormClient.h"
#include "tests/soak/StormServer.h"

namespace vantric_soak {

namespace {

using Vantric::ModemClient;

constexpr uint32_t killsPerExchange = 100;

// With one server and one client at a time, no more units of a contents lock than two can come
// into being, and none of a provider lock, which the attached server leaves alone.
constexpr int highestContentsValue = 2;

// What a death may have left of one change: at least and at most.
struct Span {
    int64_t least;
    int64_t most;

    bool holds(int64_t value) const { return least <= value && value <= most; }
};

Span around(int64_t known, int64_t uncertain) {
    return {std::min(known, known + uncertain), std::max(known, known + uncertain)};
}

class ClientStorm {
  public:
    ClientStorm(uint64_t seed, Supervision& supervision)
        : randomness_(seed),
          supervision_(supervision),
          server_(supervision.start([this] { runStormServer(*serverArea_); })) {
        supervision_.await([this] { return serverArea_->isAttached.load(); },
                           [] { return "starting"; });
        semaphores_ = std::make_unique<ExchangeSemaphores>();
        require(live_.connect(), "the first client could not connect");
        const ExchangeCounters counters(*semaphores_);
        for (const int64_t attached : counters.attached) {
            require(attached == serverAndLive, "the storm begins with foreign attachments");
        }
        letGoOn(*serverArea_);
    }

    void run(uint32_t kills) {
        exchangeAfresh();
        measureCycle();
        for (kills_ = 0; kills_ < kills; ++kills_) {
            killOne(kills_ % 2 == 0);
            supervision_.show([&] {
                return std::to_string(kills_) + " of " + std::to_string(kills) + " clients killed";
            });
            if ((kills_ + 1) % killsPerExchange == 0) {
                exchangeAfresh();
            }
        }
        exchangeAfresh();
        finish();
    }

  private:
    static constexpr int64_t serverAndLive = 2;

    // Forks a client; the server runs.
    pid_t startClient(uint32_t lastStep) {
        new (&*account_) ClientAccount();
        return forkProcess([this, lastStep] { runStormClient(*account_, *semaphores_, lastStep); },
                           [this](const std::string& text) { supervision_.fail(text); });
    }

    void awaitDeath(pid_t client) {
        int status = 0;
        waitpid(client, &status, 0);
        require(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL,
                "a client ended by itself, with raw status " + std::to_string(status));
    }

    // How long a client takes for one cycle, so that random deaths can come anywhere in it.
    void measureCycle() {
        constexpr uint32_t cycles = 20;
        const pid_t client = startClient(0);
        supervision_.awaitSoon([&] { return account_->isRunning.load(); }, "a client to run");
        const uint32_t earlier = account_->cycles;
        const auto start = Clock::now();
        supervision_.awaitSoon([&] { return account_->cycles >= earlier + cycles; }, "some cycles");
        cycle_ = (Clock::now() - start) / (account_->cycles - earlier);
        kill(client, SIGKILL);
        awaitDeath(client);
        settle(false);
    }

    void killOne(bool atAStep) {
        letGoOn(*serverArea_);
        if (atAStep) {
            awaitDeath(startClient(randomness_.between(1, stepsOfTwoCycles)));
        } else {
            const pid_t client = startClient(0);
            supervision_.awaitSoon([&] { return account_->isRunning.load(); }, "a client to run");
            const auto delay = 2 * cycle_ * randomness_.below(1000) / 1000;
            const auto end = Clock::now() + delay;
            while (Clock::now() < end) {
            }
            kill(client, SIGKILL);
            awaitDeath(client);
        }
        (atAStep ? stepDeaths_ : timedDeaths_).add(*account_);
        settle(atAStep);
    }

    // With the server at rest, explains every counter by what the dead client has done.
    void settle(bool isExact) {
        if (!holdUp(*serverArea_, server_, supervision_)) {
            ++serverStops_;
        }
        const ExchangeCounters now(*semaphores_);
        const auto explain = [&](bool holds, const std::string& counter) {
            require(holds, counter + " does not follow from what the " + std::to_string(kills_) +
                               ". dead client did");
        };
        for (std::size_t lock = 0; lock < lockCount; ++lock) {
            const LockAccount account = account_->locks.at(lock);
            explain(balanceSpan(account, isExact)
                        .holds(now.semaphores.at(lock) - last_.semaphores.at(lock)),
                    lockName(lock));
            require(now.semaphores.at(lock) <= (isProviderLock(lock) ? 1 : highestContentsValue),
                    lockName(lock) + " has risen too high");
            breakIns_ += account.breakIns;
            leftTaken_ += now.semaphores.at(lock) == 0 ? 1 : 0;
            highest_.at(lock) = std::max(highest_.at(lock), now.semaphores.at(lock));
        }
        for (std::size_t object = 0; object < objectCount; ++object) {
            const LockAccount account = account_->locks.at(providerLockOf(object));
            explain(attachedSpan(account, isExact)
                        .holds(now.attached.at(object) - last_.attached.at(object)),
                    std::string("the attach count of ") + objectNames.at(object));
        }
        const LockAccount ring = account_->locks.at(contentsLockOf(commandsObject));
        explain(attachedSpan(ring, isExact).holds(now.producers - last_.producers),
                "the count of producers");
        require(now.consumers == 1, "the count of consumers has changed");
        last_ = now;
    }

    static Span balanceSpan(const LockAccount& account, bool isExact) {
        int64_t uncertain = 0;
        switch (account.phase) {
            case LockPhase::Checking:
            case LockPhase::Waiting:
                uncertain = -1;
                break;
            case LockPhase::CheckTook:
            case LockPhase::CheckFailed:
            case LockPhase::Releasing:
                uncertain = 1;
                break;
            case LockPhase::Idle:
            case LockPhase::Holding:
                break;
        }
        return around(account.balance, isExact ? 0 : uncertain);
    }

    Span attachedSpan(const LockAccount& account, bool isExact) const {
        const int32_t step = account_->step;
        switch (account.phase) {
            case LockPhase::Releasing:
                return around(account.attached + step, 0);
            case LockPhase::Holding:
                return around(account.attached, isExact ? 0 : step);
            default:
                return around(account.attached, 0);
        }
    }

    // A new client does a whole exchange; afterwards no lock is left taken.
    void exchangeAfresh() {
        ModemClient fresh;
        require(fresh.connect(), "a fresh client could not connect");
        require(holdUp(*serverArea_, server_, supervision_),
                "the server waits for a lock that a construction should have released");
        const std::string expected = repeatedDigits(serverArea_->sequence, 32);
        std::string ssid;
        require(fresh.getWifiSSID(ssid) && ssid == expected,
                "a fresh client read another state than the published one");
        const ExchangeCounters counters(*semaphores_);
        for (std::size_t lock = 0; lock < lockCount; ++lock) {
            require(counters.semaphores.at(lock) >= 1,
                    lockName(lock) + " is still taken after a construction");
        }
        require(fresh.sendTextCommand(markerText(++markers_)), "a fresh client could not send");
        letGoOn(*serverArea_);
        supervision_.awaitSoon([this] { return serverArea_->lastMarker == markers_; },
                               "the server to receive a fresh client's command");
        require(holdUp(*serverArea_, server_, supervision_), "the server stopped by itself");
        last_ = ExchangeCounters(*semaphores_);
        for (int64_t& attached : last_.attached) {
            --attached;  // the fresh client detaches at once
        }
        --last_.producers;
    }

    void finish() {
        const ExchangeCounters end(*semaphores_);
        std::printf(
            "kills: %u of the library's clients, a cycle of which takes %" PRId64 " us; %.1f s\n",
            kills_, int64_t{std::chrono::duration_cast<std::chrono::microseconds>(cycle_).count()},
            supervision_.seconds());
        std::printf("  killed by themselves at a random step with a lock:\n");
        stepDeaths_.print();
        std::printf("  killed from outside at a random time:\n");
        timedDeaths_.print();
        std::printf("  locks found taken after a death: %" PRIu64
                    "; the server was stopped by one %" PRIu64 " times\n",
                    leftTaken_, serverStops_);
        std::printf("  constructions that found a lock at 0 and released it: %" PRIu64 "\n",
                    breakIns_);
        std::printf("  exchanges of a fresh client: %u, all sound; frames received: %" PRIu64
                    ", %" PRIu64 " of them foreign\n",
                    markers_, serverArea_->frames.load(), serverArea_->foreignFrames.load());
        std::printf("  %-28s %8s %8s %8s\n", "left behind", "attached", "lock", "highest");
        for (std::size_t lock = 0; lock < lockCount; ++lock) {
            const int64_t attached = end.attached.at(lock / 2);
            std::printf("  %-28s %8s %8d %8d\n", lockName(lock).c_str(),
                        isProviderLock(lock) ? std::to_string(attached).c_str() : "",
                        end.semaphores.at(lock), highest_.at(lock));
        }
        std::printf("  producers %" PRId64 ", consumers %" PRId64
                    " (attachments: the server, a live client, and each client that was killed "
                    "while attached or had disconnected)\n",
                    end.producers, end.consumers);
        constexpr uint32_t killsThatReachAllLocks = 1000;
        require(kills_ < killsThatReachAllLocks || stepDeaths_.coversEveryLock(),
                "no death has come inside the critical section of some lock");
        serverArea_->isOver = true;
        letGoOn(*serverArea_);
        supervision_.awaitEnds([] { return "ending"; });
    }

    Randomness randomness_;
    Supervision& supervision_;
    SharedArea<ServerArea> serverArea_;
    SharedArea<ClientAccount> account_;
    pid_t server_;
    std::unique_ptr<ExchangeSemaphores> semaphores_;
    ModemClient live_;  // keeps the ring from being set up again
    ExchangeCounters last_;
    Clock::duration cycle_{};
    DeathTally stepDeaths_;
    DeathTally timedDeaths_;
    uint32_t kills_ = 0;
    uint32_t markers_ = 0;
    uint64_t serverStops_ = 0;
    uint64_t leftTaken_ = 0;
    uint64_t breakIns_ = 0;
    std::array<int, lockCount> highest_ = {};
};

}  // namespace

void stormClients(uint32_t kills, uint64_t seed, Supervision& supervision) {
    ClientStorm storm(seed, supervision);
    storm.run(kills);
}

}  // namespace vantric_soak
