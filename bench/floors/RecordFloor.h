// The least that reading a published record takes: lock, check of the header, copy, unlock.
#pragma once

#include <time.h>

#include <cstring>

#include "Vantric/ClientServer/SharedMemoryLayout.h"
#include "Vantric/ClientServer/SharedMemoryProvider.h"
#include "Vantric/ModemState.h"
#include "bench/floors/SharedObject.h"

namespace vantric_bench {

template <class Record>
class RecordFloor {
  public:
    explicit RecordFloor(const std::string& segment) : object_(segment) {}

    bool read(Record& record) {
        const auto* layout = static_cast<const Layout*>(object_.payload());
        sem_wait(object_.semaphore());
        const bool isValid = layout->version == 1 && layout->valid == 1;
        if (isValid) {
            std::memcpy(static_cast<void*>(&record), &layout->record, sizeof(record));
        }
        sem_post(object_.semaphore());
        return isValid;
    }

  private:
    using Segment = com_qel::Orvane::Vantric::ClientServer::SharedMemoryLayout<
        Record, com_qel::Orvane::Vantric::ClientServer::SharedMemoryProvider>;
    using Layout = typename Segment::Layout;

    SharedObject object_;
};

// A query of the basic state also reads the clock, to judge the age of the copy.
inline bool isFresh(const com_qel::Orvane::Vantric::ModemState& state) {
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    return now.tv_sec - state.timestamp <= 300;
}

}  // namespace vantric_bench
