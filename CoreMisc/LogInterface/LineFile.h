// The file behind a back-end: an output stream of whole lines, each written with one system call.
//
// Like a standard file stream it reports nothing: once it could not be opened or a write failed, it
// has failed, and every later line is lost until it is opened again.
// Ownership: closes its file when destroyed.
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

    bool isOpen() const { return descriptor_ != closed; }

    // Creates or empties the file and forgets earlier failures. Closed before the call.
    void open(const std::string& path);

    // No line is pending: there is nothing that could fail.
    void close();

    // Adds `line`, NUL-terminated, and a line end. Throws std::bad_alloc when there is no memory
    // for a copy.
    void write(const char* line);

    // Where the next line goes, in bytes; -1 when that cannot be told, as after a failure.
    int64_t position() const;

  private:
    static constexpr int closed = -1;

    int descriptor_ = closed;
    bool hasFailed_ = false;
    std::string lineWithEnd_;
};

}  // namespace com_qel::Korvel::LogInterface
