// What is wrong with the server at the moment. Pure data.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>

namespace vantric_sim {

// The shared-memory objects, by the names that scenarios use.
enum class Segment { State, Extended, Networks, Commands };

struct SegmentFaults {
    bool frozen = false;              // nothing is written
    bool invalid = false;             // the header says that there is no record
    std::optional<uint32_t> version;  // in place of the right one
};

struct Faults {
    static constexpr std::size_t stateSegmentCount = 3;

    std::array<SegmentFaults, stateSegmentCount> segments;
    std::map<uint32_t, std::optional<uint32_t>> ignoredFrames;  // by command; empty is without end
    bool switchIsStuck = false;
    bool drainingIsStopped = false;
    int64_t timestampAge = 0;  // seconds

    SegmentFaults& of(Segment segment) { return segments.at(static_cast<std::size_t>(segment)); }

    // Whether to ignore the frame of `command` that has just come; counts it.
    bool takeIgnored(uint32_t command) {
        const auto entry = ignoredFrames.find(command);
        if (entry == ignoredFrames.end()) {
            return false;
        }
        if (entry->second && --*entry->second == 0) {
            ignoredFrames.erase(entry);
        }
        return true;
    }
};

}  // namespace vantric_sim
