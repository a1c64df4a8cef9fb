// What a server publishes one after the other, byte by byte, and the clients' view of it: which
// reads succeed and what they find.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/Input.h"

namespace vantric_fuzz {

// The header and the record of one state segment.
struct PublishedSegment {
    static constexpr std::size_t headerSize = 8;
    Bytes bytes;

    bool isReadable() const;
    Bytes record() const { return Bytes(bytes.begin() + headerSize, bytes.end()); }
};

struct Publication {
    PublishedSegment state;
    PublishedSegment extended;
    PublishedSegment list;
};

// A stay on one publication after the other; the last one stays for good.
class Broadcast {
  public:
    Broadcast(std::vector<Publication> publications, int64_t now)
        : publications_(std::move(publications)), now_(now) {}

    const Publication& current() const { return publications_[index_]; }
    std::size_t index() const { return index_; }
    int64_t now() const { return now_; }
    void goOn() { index_ += index_ + 1 < publications_.size() ? 1 : 0; }

  private:
    std::vector<Publication> publications_;
    int64_t now_;  // seconds on the wall clock
    std::size_t index_ = 0;
};

// Everything readable and fresh, every byte of the records zero.
Publication plainPublication(int64_t now);

// Three segments, each with a form (bits: 1 any header follows, 2 any time stamp follows) and then,
// as they apply: version (word) and valid (byte); the time stamp (word) or else its age (16 bits,
// signed); the list's count (word); the counter (byte); the record's content (run, repeated).
Publication readPublication(Input& input, int64_t now);

int32_t integerAt(const Bytes& record, std::size_t offset);

// Up to the NUL or the end of the field.
std::string textAt(const Bytes& record, std::size_t offset, std::size_t size);

}  // namespace vantric_fuzz
