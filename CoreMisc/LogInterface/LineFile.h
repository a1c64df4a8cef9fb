/// \class com_qel::Korvel::LogInterface::LineFile
/// The file of a back-end: an output stream of whole lines. Each line is written with one system
/// call, unless the system takes only a part of it.
///
/// Like a standard file stream it reports nothing: after an open or a write that failed, every line
/// is lost until the file is opened again.
/// Ownership: closes its file when destroyed. Programs that the process starts do not inherit it.
#pragma once

#include <cstdint>
#include <string>

namespace com_qel::Korvel::LogInterface {

class LineFile {
  public:
    /// Opens `path` as open() does.
    explicit LineFile(const std::string& path);
    ~LineFile();

    LineFile(const LineFile&) = delete;
    LineFile& operator=(const LineFile&) = delete;

    /// Whether there is a file, even one whose writes fail.
    bool isOpen() const { return descriptor_ != closed; }

    /// Creates or empties the file and forgets earlier failures. Closed before the call.
    void open(const std::string& path);

    /// Does nothing when there is no file. A failure is ignored: every line has been written.
    void close();

    /// Adds `line`, NUL-terminated, and a line end.
    void write(const char* line);

    /// Where the next line goes, in bytes; -1 when it is unknown, as after a failure.
    int64_t position() const;

  private:
    static constexpr int closed = -1;

    int descriptor_ = closed;
    bool hasFailed_ = false;
};

}  // namespace com_qel::Korvel::LogInterface
