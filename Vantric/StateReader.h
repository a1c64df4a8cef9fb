/// \class com_qel::Orvane::Vantric::StateReader
/// Reads one state segment for the client and decides which failures count.
///
/// Internal to the client library. Ownership: owns the segment between connect() and disconnect().
/// Thread-safety: none. Process-safety: as the segment's read().
#pragma once

#include <memory>
#include <stdexcept>
#include <utility>

#include "Vantric/ClientServer/SharedMemoryLayout.h"
#include "Vantric/ClientServer/SharedMemoryProvider.h"

namespace com_qel::Orvane::Vantric {

template <class T>
class StateReader {
  public:
    /// Where the record comes from.
    using Segment = ClientServer::SharedMemoryLayout<T, ClientServer::SharedMemoryProvider>;

    /// The texts of the errors that read() throws; static lifetime.
    StateReader(const char* notConnectedText, const char* readFailureText)
        : notConnectedText_(notConnectedText), readFailureText_(readFailureText) {}

    /// Takes over `segment`; the one it replaces is destroyed after that, so the attach count of a
    /// segment in use never falls to zero in between.
    void connect(std::unique_ptr<Segment> segment) { segment_ = std::move(segment); }

    /// Hands the segment back to the caller; null when there is none.
    std::unique_ptr<Segment> disconnect() { return std::move(segment_); }

    /// Copies the published record and hands it to `check`, which throws if the copy is not to be
    /// used; what it throws is passed on. Throws std::runtime_error, with `record` untouched, while
    /// not connected. An invalid segment leaves `record` all zero and throws std::runtime_error the
    /// first time only: until `check` accepts a copy again, the zeros count as read.
    template <class Check>
    void read(T& record, Check check) {
        if (segment_ == nullptr) {
            throw std::runtime_error(notConnectedText_);
        }
        if (segment_->read(record)) {
            check(record);
            readFailureReported_ = false;
            return;
        }
        if (!readFailureReported_) {
            readFailureReported_ = true;
            throw std::runtime_error(readFailureText_);
        }
    }

    /// The same for records that need no check.
    void read(T& record) {
        read(record, [](const T&) {});
    }

  private:
    const char* notConnectedText_;
    const char* readFailureText_;
    std::unique_ptr<Segment> segment_;
    bool readFailureReported_ = false;
};

}  // namespace com_qel::Orvane::Vantric
