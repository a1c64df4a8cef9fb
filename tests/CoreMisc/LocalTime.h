// The local time as log lines show it, and the time zone that it depends on.
#pragma once

#include <optional>
#include <string>

namespace vantric_test {

// The fixed 24-character form with its newline.
std::string localTimeNow();

// For as long as it lives, the environment has another time zone, of which the C library is not
// told; null takes TZ out of it.
class TimeZone {
  public:
    explicit TimeZone(const char* zone);
    ~TimeZone();
    TimeZone& operator=(TimeZone&&) = delete;

  private:
    std::optional<std::string> old_;
};

}  // namespace vantric_test
