// The notes beside the bytes of a ring.
#pragma once

#include "tests/docs/ByteLines.h"
#include "tests/docs/Layouts.h"

namespace vantric_test {

// Compares the notes of an operation's lines with their bytes. A note's parts stand between
// semicolons: `command N` or `length N` of a frame, a field of the ring's header with its value, or
// a payload. One whose bytes go on at the start of the ring's data ends in "...", and so begins the
// next line. Throws std::runtime_error when a note is not what the bytes are.
class RingNotes {
  public:
    void read(const ByteLine& line);

    // Call behind the operation's last line.
    void requireEnd() const;

  private:
    Bytes bytesOf(const std::string& part, const ByteLine& line, std::size_t position);

    Bytes rest_;  // of a field that was split at the end of the last line
};

}  // namespace vantric_test
