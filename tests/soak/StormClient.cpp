#include "tests/soak/StormClient.h"

#include <csignal>
#include <memory>
#include <string>

#include "Vantric/ClientServer/SharedMemoryModemState.h"
#include "Vantric/ModemClient.h"
#include "tests/support/SemaphoreCalls.h"

namespace vantric_soak {

namespace {

using com_qel::Orvane::Vantric::ModemClient;
using com_qel::Orvane::Vantric::ModemStateExtended;
using com_qel::Orvane::Vantric::WifiInfosList;
using com_qel::Orvane::Vantric::ClientServer::SharedMemoryModemStateExtended;
using com_qel::Orvane::Vantric::ClientServer::SharedMemoryWifiList;
using vantric_test::SemaphoreMoment;

static_assert(std::atomic<LockAccount>::is_always_lock_free);

LockAccount after(SemaphoreMoment moment, LockAccount account, int32_t step) {
    const bool isConstruction = account.phase == LockPhase::Checking ||
                                account.phase == LockPhase::CheckTook ||
                                account.phase == LockPhase::CheckFailed;
    switch (moment) {
        case SemaphoreMoment::AboutToTry:
            account.phase = LockPhase::Checking;
            break;
        case SemaphoreMoment::AboutToWait:
            account.phase = LockPhase::Waiting;
            break;
        case SemaphoreMoment::Taken:
            --account.balance;
            account.phase = isConstruction ? LockPhase::CheckTook : LockPhase::Holding;
            break;
        case SemaphoreMoment::NotTaken:
            account.phase = LockPhase::CheckFailed;
            ++account.breakIns;
            break;
        case SemaphoreMoment::AboutToPost:
            account.phase = isConstruction ? account.phase : LockPhase::Releasing;
            break;
        case SemaphoreMoment::Posted:
            ++account.balance;
            account.attached += account.phase == LockPhase::Releasing ? step : 0;
            account.phase = LockPhase::Idle;
            break;
    }
    return account;
}

// The client's own queries of these two segments take too long for a storm.
template <class Segment, class Record>
void readDirectly(ClientAccount& account) {
    Record record;
    account.beginAttaching();
    {
        Segment segment;
        account.beginExchanging();
        segment.read(record);
        account.beginDetaching();
    }
}

void exchangeOnce(ModemClient& client, ClientAccount& account) {
    readDirectly<SharedMemoryModemStateExtended, ModemStateExtended>(account);
    readDirectly<SharedMemoryWifiList, WifiInfosList>(account);
    account.beginAttaching();
    require(client.connect(), "a client of the storm could not connect");
    account.beginExchanging();
    int32_t type = 0;
    std::string text;
    client.getConnectivityType(type);
    client.getWifiSSID(text);
    client.getWifiPasswordAndEncryptionType(type, text);
    client.setWifiSSID("storm");
    client.setConnectivityType(1);
}

}  // namespace

void runStormClient(ClientAccount& account, const ExchangeSemaphores& semaphores,
                    uint32_t lastStep) {
    uint32_t steps = 0;
    vantric_test::observeSemaphoreCalls([&](SemaphoreMoment moment, const sem_t* semaphore) {
        const std::size_t lock = semaphores.lockOf(semaphore);
        require(lock < lockCount, "a client of the storm uses a foreign semaphore");
        std::atomic<LockAccount>& entry = account.locks.at(lock);
        entry = after(moment, entry, account.step);
        if (++steps == lastStep) {
            std::raise(SIGKILL);
        }
    });
    account.isRunning = true;
    while (true) {
        auto client = std::make_unique<ModemClient>();
        exchangeOnce(*client, account);
        // Every other client disconnects, which keeps all counters up for ever; the rest detach.
        if (account.cycles++ % 2 == 0) {
            client->disconnect();
        }
        account.beginDetaching();
        client.reset();
    }
}

}  // namespace vantric_soak
