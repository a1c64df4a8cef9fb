#include "CoreMisc/src/VyMutex.h"

#include <cerrno>
#include <exception>

#include "CoreMisc/src/VyLog.h"

namespace com_qel::utils {

namespace {

constexpr const char* sourceFile = "CoreMisc/src/VyMutex";
constexpr uint64_t traceCategory = 2;

// A log that cannot be configured for lack of memory loses the record: the mutex itself must go on
// working.
template <class... Parts>
void log(VyLog::Level level, int line, uint64_t category, const Parts&... parts) noexcept {
    try {
        VyLog record(level, sourceFile, line, category);
        (record.append(parts), ...);
    } catch (const std::exception&) {
        return;
    }
}

void trace(int line, const char* text) noexcept {
    if ((VyLog::TraceMask() & traceCategory) != 0) {
        log(VyLog::Trace, line, traceCategory, text);
    }
}

}  // namespace

Mutex::Mutex() {
    trace(__LINE__, "Mutex initialization");
    const int result = pthread_mutex_init(&mutex_, nullptr);
    if (result != 0) {
        log(VyLog::Error, __LINE__, 0, "Mutex initialization failed, ERROR code: ", result);
    }
}

Mutex::~Mutex() {
    trace(__LINE__, "Mutex destroy");
    const int result = pthread_mutex_destroy(&mutex_);
    if (result != 0) {
        log(VyLog::Error, __LINE__, 0, "Mutex destructor failed, ERROR code: ", result);
    }
}

int Mutex::Lock() {
    trace(__LINE__, "Mutex lock");
    const int result = pthread_mutex_lock(&mutex_);
    if (result == 0) {
        return 0;
    }
    if (result == EBUSY) {
        log(VyLog::Error, __LINE__, 0, "Mutex lock failed, ERROR code: ERR_BUSY");
        return ERR_BUSY;
    }
    log(VyLog::Error, __LINE__, 0, "Mutex lock failed, ERROR code: ERR_UNKNOWN (", result, ")");
    return ERR_UNKNOWN;
}

int Mutex::Unlock() {
    trace(__LINE__, "Mutex unlock");
    const int result = pthread_mutex_unlock(&mutex_);
    if (result == 0) {
        return 0;
    }
    log(VyLog::Error, __LINE__, 0, "Mutex unlock failed, ERROR code: ERR_UNKNOWN (", result, ")");
    return ERR_UNKNOWN;
}

}  // namespace com_qel::utils
