// The state behind a mutex of Boost.Interprocess in its shared memory.
#pragma once

#include <boost/interprocess/managed_shared_memory.hpp>
#include <boost/interprocess/sync/interprocess_mutex.hpp>
#include <boost/interprocess/sync/scoped_lock.hpp>
#include <cstring>

#include "Vantric/ModemState.h"
#include "bench/floors/RecordFloor.h"

namespace vantric_bench {

class BoostState {
  public:
    explicit BoostState(const com_qel::Orvane::Vantric::ModemState& published)
        : segment_(boost::interprocess::create_only, "BoostState", 65536),
          shared_(segment_.construct<Shared>("state")()) {
        shared_->record = published;
    }

    bool read(com_qel::Orvane::Vantric::ModemState& record) {
        {
            const boost::interprocess::scoped_lock<boost::interprocess::interprocess_mutex> lock(
                shared_->mutex);
            std::memcpy(static_cast<void*>(&record), &shared_->record, sizeof(record));
        }
        return isFresh(record);
    }

  private:
    struct Shared {
        boost::interprocess::interprocess_mutex mutex;
        com_qel::Orvane::Vantric::ModemState record;
    };

    boost::interprocess::managed_shared_memory segment_;
    Shared* shared_;
};

}  // namespace vantric_bench
