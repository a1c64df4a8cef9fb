// The exit statuses, and the exception that ends a command early.
#pragma once

#include <stdexcept>
#include <string>

namespace vantricctl {

enum ExitStatus : int {
    statusDone = 0,
    statusFailed = 1,
    statusWrongUse = 2,
    statusNoServer = 3,
    statusUnusableState = 4,  // stale or of another version
    statusTimeOver = 5,
    statusSignal = 128,  // plus the signal's number
};

// Ends the program with `status` after one sentence on standard error, or silently when that is
// empty. The sentence must be safe for a terminal: pass bytes of others through shown().
class Failure : public std::runtime_error {
  public:
    explicit Failure(int status, const std::string& sentence = {})
        : std::runtime_error(sentence), status_(status) {}

    int status() const { return status_; }

  private:
    int status_;
};

}  // namespace vantricctl
