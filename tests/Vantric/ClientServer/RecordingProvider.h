// A provider without shared memory that notes what is done with it.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/ProcessFacts.h"
#include "tests/support/RawSegment.h"
#include "tests/support/RawSemaphore.h"

namespace vantric_test {

class RecordingProvider {
  public:
    static constexpr const char* segmentName = "RecordedSegment";
    static constexpr const char* lockName = "RecordedSegmentLock";

    // What happened so far, each with whether the lock was open then. Empty it before each use.
    static std::vector<std::string>& events() {
        static std::vector<std::string> noted;
        return noted;
    }

    // Lets the next map() throw.
    static bool& failsNext() {
        static bool fails = false;
        return fails;
    }

    RecordingProvider() { note("constructed"); }
    ~RecordingProvider() { note("destroyed"); }

    RecordingProvider(const RecordingProvider&) = delete;
    RecordingProvider& operator=(const RecordingProvider&) = delete;

    void* map(uint32_t size, const std::string& name) {
        note("map " + std::to_string(size) + " " + name);
        if (failsNext()) {
            failsNext() = false;
            throw std::runtime_error("no room");
        }
        return memory_;
    }

  private:
    static void note(const std::string& event) {
        const std::string object = semaphoreObject(lockName);
        const bool isOpen = segmentExists(object) && isMapped(segmentInode(object));
        events().push_back(event + (isOpen ? ", lock open" : ", lock closed"));
    }

    alignas(8) unsigned char memory_[64] = {};
};

}  // namespace vantric_test
