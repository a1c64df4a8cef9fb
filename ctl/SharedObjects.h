// The objects and semaphores of the exchange, read without taking part in it: as files of /dev/shm,
// opened read-only and copied. Nothing is created, mapped, attached or taken, and a file that
// another process shortens meanwhile gives a short copy, not a signal.
#pragma once

#include <semaphore.h>
#include <sys/types.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Vantric/ModemState.h"

namespace vantricctl {

using com_qel::Orvane::Vantric::ModemState;
using com_qel::Orvane::Vantric::ModemStateExtended;
using com_qel::Orvane::Vantric::WifiInfosList;

struct SharedFile {
    std::string name;
    int error = 0;  // why there is no copy: ENOENT for a missing file; 0 when there is one
    uint64_t size = 0;
    uid_t owner = 0;
    mode_t mode = 0;
    dev_t device = 0;
    uint64_t inode = 0;
    std::string bytes;  // the copy, from the start

    // Whether there is such a file, readable or not.
    bool exists() const { return error != ENOENT; }

    // Whether the file and the copy have that size.
    bool hasSize(std::size_t right) const { return size == right && bytes.size() == right; }

    // What the copy holds of a Value at `offset`, zeros for the rest.
    template <class Value>
    Value at(std::size_t offset) const {
        Value value = {};
        if (offset < bytes.size()) {
            bytes.copy(reinterpret_cast<char*>(&value), sizeof(value), offset);
        }
        return value;
    }
};

// A semaphore in the format that its file has: the C library's for programs of 32 or of 64 bits.
struct Semaphore {
    SharedFile file;
    int bits = 0;  // 0 when the file is of neither size
    uint32_t value = 0;

    bool isHeld() const { return bits != 0 && value == 0; }
};

// The format of this program's own semaphores.
constexpr int ownSemaphoreBits = sizeof(sem_t) == 16 ? 32 : 64;

Semaphore readSemaphore(const std::string& name);

// Each object begins with the number of its users; the header of a state follows.
constexpr std::size_t attachCountSize = sizeof(uint32_t);
constexpr std::size_t stateRecordOffset = attachCountSize + 8;

// The object that holds a Record.
struct SharedObject {
    const char* name;
    std::size_t recordOffset;
    std::size_t size;
};

template <class Record>
constexpr SharedObject stateObject(const char* name) {
    return {name, stateRecordOffset, stateRecordOffset + sizeof(Record)};
}

template <class Record>
constexpr SharedObject objectOf = {};
template <>
inline constexpr auto objectOf<ModemState> = stateObject<ModemState>("ModemStateShm");
template <>
inline constexpr auto objectOf<ModemStateExtended> =
    stateObject<ModemStateExtended>("ModemStateEx");
template <>
inline constexpr auto objectOf<WifiInfosList> = stateObject<WifiInfosList>("ModemWifiList");

// What an object shows of its server. The ring is Published when it can be read.
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

// A copy of an object, and what it shows; 0 stands for what it does not hold.
struct ObjectCopy {
    SharedFile file;
    Condition condition;
    uint32_t version;
    uint8_t valid;
    int64_t ageSeconds;  // of the basic state; negative when it is from the future

    bool isPublished() const { return condition == Condition::Published; }
};

// A consistent copy: made while the contents lock was free, and equal to a second one. A lock that
// stays held, as a dead process leaves it, ends the retries after a moment, because nothing writes
// then.
ObjectCopy copyOf(const SharedObject& object);

// The same, but throws Failure unless the object is published.
ObjectCopy publishedCopyOf(const SharedObject& object);

template <class Record>
Record recordIn(const ObjectCopy& copy) {
    return copy.file.at<Record>(objectOf<Record>.recordOffset);
}

// The record that a server publishes now. Throws Failure when it publishes none.
template <class Record>
Record publishedRecord() {
    return recordIn<Record>(publishedCopyOf(objectOf<Record>));
}

// The entries of the list that are meaningful, whatever its count says.
std::vector<com_qel::Orvane::Vantric::WifiListEntry> entriesOf(const WifiInfosList& list);

}  // namespace vantricctl
