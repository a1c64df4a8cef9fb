#include "tests/CoreMisc/LocalTime.h"

#include <cstdlib>
#include <ctime>

namespace vantric_test {

namespace {

void setZone(const char* zone) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): there is one thread
    zone == nullptr ? unsetenv("TZ") : setenv("TZ", zone, 1);
}

}  // namespace

std::string localTimeNow() {
    const std::time_t now = std::time(nullptr);
    std::tm local = {};
    tzset();
    localtime_r(&now, &local);
    char text[64];
    return {text, std::strftime(text, sizeof(text), "%a %b %e %H:%M:%S %Y\n", &local)};
}

TimeZone::TimeZone(const char* zone) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): there is one thread
    const char* old = std::getenv("TZ");
    if (old != nullptr) {
        old_ = old;
    }
    setZone(zone);
}

TimeZone::~TimeZone() {
    setZone(old_ ? old_->c_str() : nullptr);
}

}  // namespace vantric_test
