// The state as a file in a memory file system, opened for every look.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include "Vantric/ModemState.h"
#include "bench/floors/RecordFloor.h"

namespace vantric_bench {

class FileState {
  public:
    explicit FileState(const com_qel::Orvane::Vantric::ModemState& published) {
        const int file = open(path, O_WRONLY | O_CREAT | O_TRUNC, 0600);
        isPublished_ = write(file, &published, sizeof(published)) == sizeof(published);
        close(file);
    }

    bool read(com_qel::Orvane::Vantric::ModemState& record) const {
        const int file = open(path, O_RDONLY);
        const ssize_t length = ::read(file, &record, sizeof(record));
        close(file);
        return isPublished_ && length == sizeof(record) && isFresh(record);
    }

  private:
    static constexpr const char* path = "/dev/shm/FileState";

    bool isPublished_ = false;
};

}  // namespace vantric_bench
