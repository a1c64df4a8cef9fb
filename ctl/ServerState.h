// The published records, read without taking part in the exchange.
//
// A reader here attaches to nothing and takes no lock. It copies an object twice while the contents
// lock is free and accepts equal copies. A lock that stays held, as a dead process leaves it, ends
// the retries after a moment, because nothing writes then.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

#include "Vantric/ClientServer/SharedMemoryModemState.h"
#include "ctl/Failure.h"
#include "ctl/SharedFile.h"

namespace vantricctl {

using com_qel::Orvane::Vantric::ModemState;
using com_qel::Orvane::Vantric::ModemStateExtended;
using com_qel::Orvane::Vantric::WifiInfosList;

// What an object shows of its server.
enum class Condition {
    Published,
    Stale,         // only of the basic state
    Invalid,       // the header says that nothing is published
    OtherVersion,  // of the layout
    WrongSize,
    Unreadable,  // this user may not read it
    Absent,      // there is no such object
};

const char* conditionName(Condition condition);

template <class Record>
constexpr const char* objectName = nullptr;
template <>
inline constexpr const char* objectName<ModemState> = "ModemStateShm";
template <>
inline constexpr const char* objectName<ModemStateExtended> = "ModemStateEx";
template <>
inline constexpr const char* objectName<WifiInfosList> = "ModemWifiList";

template <class Record>
using LayoutOf = typename com_qel::Orvane::Vantric::ClientServer::SharedMemoryLayout<
    Record, com_qel::Orvane::Vantric::ClientServer::SharedMemoryProvider>::Layout;

template <class Record>
constexpr std::size_t objectSize = attachCountSize + sizeof(LayoutOf<Record>);

// The judgement of one copy, whose header fields are 0 as far as the copy does not hold them.
struct Judgement {
    Condition condition = Condition::Absent;
    int64_t ageSeconds = 0;  // of the basic state; negative when it is from the future
    uint32_t version = 0;
    uint8_t valid = 0;

    bool isPublished() const { return condition == Condition::Published; }
};

Judgement judgeHeader(const SharedFile& file, std::size_t rightSize, uint32_t version,
                      uint8_t valid);

// Adds the age of the basic state, which makes a published state stale.
void judgeAge(Judgement& judgement, int64_t timestamp);

// The failure that an unpublished object is to a command.
Failure failureOf(const Judgement& judgement, const SharedFile& file, std::size_t rightSize);

// A consistent copy of any object, as above.
SharedFile readConsistently(const std::string& name, std::size_t size);

// The record is what the copy holds of it, zeros for the rest.
template <class Record>
struct Publication : Judgement {
    Record record = {};
};

template <class Record>
Publication<Record> judge(const SharedFile& file) {
    LayoutOf<Record> layout = {};
    file.copyTo(&layout, attachCountSize, sizeof(layout));
    Publication<Record> result = {
        judgeHeader(file, objectSize<Record>, layout.version, layout.valid), layout.record};
    if constexpr (std::is_same_v<Record, ModemState>) {
        judgeAge(result, layout.record.timestamp);
    }
    return result;
}

// A consistent copy of the object, judged.
template <class Record>
Publication<Record> readPublication() {
    return judge<Record>(readConsistently(objectName<Record>, objectSize<Record>));
}

// The same of what a server publishes now. Throws Failure when it publishes nothing.
template <class Record>
Publication<Record> requirePublication() {
    const SharedFile file = readConsistently(objectName<Record>, objectSize<Record>);
    const auto publication = judge<Record>(file);
    if (!publication.isPublished()) {
        throw failureOf(publication, file, objectSize<Record>);
    }
    return publication;
}

// How many entries to read; copied first, because the packed field may be misaligned.
inline int32_t entryCount(const WifiInfosList& list) {
    return std::clamp<int32_t>(int32_t{list.count}, 0, WifiInfosList::maximumCount);
}

}  // namespace vantricctl
