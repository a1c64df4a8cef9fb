#include "tests/CoreMisc/SystemLogRecorder.h"

#include <syslog.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <new>

namespace vantric_test {

namespace {

void record(int priority, const char* format, va_list arguments) {
    char* text = nullptr;
    if (vasprintf(&text, format, arguments) == -1) {
        throw std::bad_alloc();
    }
    systemLog().entries.push_back({priority, format, text});
    std::free(text);
}

}  // namespace

SystemLog& systemLog() {
    static SystemLog log;
    return log;
}

}  // namespace vantric_test

extern "C" void openlog(const char* identity, int options, int facility) {
    vantric_test::systemLog().whileOpening();
    vantric_test::systemLog().openings.push_back({identity != nullptr, options, facility});
}

extern "C" void syslog(int priority, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    vantric_test::record(priority, format, arguments);
    va_end(arguments);
}

// What syslog() turns into when the product is built with fortified C functions.
extern "C" void fortifiedSyslog(int priority, int flag, const char* format,
                                ...) __asm__("__syslog_chk");
extern "C" void fortifiedSyslog(int priority, int /*flag*/, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    vantric_test::record(priority, format, arguments);
    va_end(arguments);
}
