// The file behind a back-end: an output stream of whole lines, each written with one call of the
// system unless that takes less than all of it.
//
// Like a standard file stream it reports nothing: once it could not be opened or a write failed, it
// has failed, and every later line is lost until it is opened again.
// Ownership: closes its file when destroyed. Programs that the process starts do not inherit it.
#pragma once

#include <cstdint>
#include <string>

namespace com_qel::Korvel::LogInterface {

class LineFile {
  public:
    // Opens `path` as open() does.
    explicit LineFile(const std::string& path);
    ~LineFile();

    LineFile(const LineFile&) = delete;
    LineFile& operator=(const LineFile&) = delete;

    // Whether there is a file, failed or not.
    bool isOpen() const { return descriptor_ != closed; }

    // Creates or empties the file and forgets earlier failures. Closed before the call.
    void open(const std::string& path);

    // Does nothing when there is no file. A failure does not count: every line has been written,
    // and the next open() decides what becomes of later ones.
    void close();

    // Adds `line`, NUL-terminated, and a line end.
    void write(const char* line);

    // Where the next line goes, in bytes; -1 when that cannot be told, as after a failure.
    int64_t position() const;

  private:
    static constexpr int closed = -1;

    int descriptor_ = closed;
    bool hasFailed_ = false;
};

}  // namespace com_qel::Korvel::LogInterface
