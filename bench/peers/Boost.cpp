// Boost.Interprocess: the state in its shared memory, under its mutex; commands in its message
// queue.
#include <boost/interprocess/ipc/message_queue.hpp>
#include <boost/interprocess/managed_shared_memory.hpp>
#include <boost/interprocess/sync/interprocess_mutex.hpp>
#include <boost/interprocess/sync/scoped_lock.hpp>
#include <cstring>
#include <memory>

#include "bench/Operation.h"
#include "bench/floors/RecordFloor.h"
#include "bench/peers/PeerMessage.h"
#include "tests/support/PublishedServer.h"

namespace vantric_bench {

namespace {

namespace interprocess = boost::interprocess;
using com_qel::Orvane::Vantric::ModemState;

struct SharedState {
    interprocess::interprocess_mutex mutex;
    ModemState record = vantric_test::freshState();
};

Repetition query() {
    auto segment = std::make_shared<interprocess::managed_shared_memory>(interprocess::create_only,
                                                                         "BoostState", 65536);
    SharedState* shared = segment->construct<SharedState>("state")();
    auto record = std::make_shared<ModemState>();
    return repeat([=, keeper = segment] {
        {
            const interprocess::scoped_lock<interprocess::interprocess_mutex> lock(shared->mutex);
            std::memcpy(static_cast<void*>(record.get()), &shared->record, sizeof(*record));
        }
        return isFresh(*record);
    });
}

Repetition enqueue() {
    auto queue = std::make_shared<interprocess::message_queue>(interprocess::create_only,
                                                               "BoostQueue", batchSize, 256);
    const PeerMessage message;
    return repeatSending([=] { return queue->try_send(&message, sizeof(message), 0); },
                         [=] {
                             return countReceived(message, [&](void* buffer, std::size_t size) {
                                 interprocess::message_queue::size_type length = 0;
                                 unsigned int priority = 0;
                                 return queue->try_receive(buffer, size, length, priority)
                                            ? static_cast<long>(length)
                                            : -1L;
                             });
                         });
}

}  // namespace

Operations boostPeers() {
    return {
        {stateRow, peerRole, "Boost.Interprocess", query},
        {enqueueRow, peerRole, "Boost.Interprocess", enqueue},
    };
}

}  // namespace vantric_bench
