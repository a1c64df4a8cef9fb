#include "fuzz/LogVariables.h"

#include <unistd.h>

#include <cstring>

namespace vantric_fuzz {

namespace {

constexpr const char* prefix = "VRAX_LOG_";
constexpr const char* names[LogVariables::count] = {
    "VRAX_LOG_LEVEL", "VRAX_LOG_TYPE", "VRAX_LOG_ROOT", "VRAX_LOG_NAME", "VRAX_LOG_SIZE"};

}  // namespace

LogVariables::LogVariables(const Texts& texts) : previous_(environ) {
    for (char** entry = previous_; *entry != nullptr; ++entry) {
        if (std::strncmp(*entry, prefix, std::strlen(prefix)) != 0) {
            table_.push_back(*entry);
        }
    }
    settings_.reserve(count);
    for (std::size_t index = 0; index < count; ++index) {
        if (texts[index]) {
            settings_.push_back(std::string(names[index]) + "=" + *texts[index]);
            table_.push_back(settings_.back().data());
        }
    }
    table_.push_back(nullptr);
    environ = table_.data();
}

LogVariables::~LogVariables() {
    environ = previous_;
}

}  // namespace vantric_fuzz
