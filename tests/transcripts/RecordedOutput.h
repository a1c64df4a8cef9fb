// Standard output of a client, write by write.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vantric_test {

// Hours, minutes, seconds and milliseconds.
std::string timeText(std::chrono::nanoseconds time);

// `bytes` with a newline as \n, a tab as \t, a backslash as \\ and every other byte that is not
// printable ASCII as \xNN.
std::string escaped(std::string_view bytes);

// `text` with each run of 200 or more equal characters c as \{length c}.
std::string shortened(std::string_view text);

class RecordedOutput {
  public:
    // A terminal passes the bytes on as they are, but does not keep writes apart: those of one
    // moment count as one.
    enum class Kind { Pipe, Terminal };

    explicit RecordedOutput(Kind kind = Kind::Pipe);
    ~RecordedOutput();
    RecordedOutput& operator=(RecordedOutput&&) = delete;

    // The end to write to; meant for the client alone, which must have it when this is called.
    int descriptor() const { return writeEnd_; }
    void closeDescriptor();

    using Clock = std::function<std::chrono::nanoseconds()>;

    // Takes what was written since the last call. The clock is read after each write: it must not
    // go on before a write was collected.
    void collect(const Clock& clock);

    // A block of lines for each write: its time, then its bytes, escaped, with a line of its own
    // after each newline. Writes that come at least three times again at equal intervals stand
    // once, with their count.
    std::string text() const;

    // Applies `change` to the bytes of every write.
    void change(const std::function<void(std::vector<std::string>& writes)>& change);

  private:
    struct Repetition {
        std::size_t length;  // of the series, in writes
        std::size_t count;   // how often it comes again
    };

    Repetition repetitionAt(std::size_t first) const;
    std::string writeText(std::size_t index) const;

    const bool joinsWrites_;
    std::vector<std::chrono::nanoseconds> times_;
    std::vector<std::string> writes_;
    int readEnd_ = -1;
    int writeEnd_ = -1;
};

}  // namespace vantric_test
