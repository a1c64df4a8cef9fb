// Puts finished lines somewhere.
//
// Ownership: nobody deletes a back-end through this interface; back-ends live until the process
// ends.
// Thread-safety: none; the Sink in front of a back-end calls it under its mutex.
#pragma once

namespace com_qel::Korvel::LogInterface {

class IBackEnd {
  public:
    IBackEnd(const IBackEnd&) = delete;
    IBackEnd& operator=(const IBackEnd&) = delete;

    // Writes one line. `line` is NUL-terminated, lacks its closing newline and is not kept. A line
    // that cannot be written is lost without a report.
    virtual void Write(const char* line) = 0;

  protected:
    IBackEnd() = default;
    ~IBackEnd() = default;
};

}  // namespace com_qel::Korvel::LogInterface
