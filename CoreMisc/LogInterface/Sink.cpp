#include "CoreMisc/LogInterface/Sink.h"

#include <cassert>
#include <type_traits>

namespace com_qel::Korvel::LogInterface {

namespace {

// A formatter may keep its line in storage that all sinks share, as FormatLine() does. So no sink
// formats while another still writes its line. Records from static constructors and destructors
// come here too: the mutex needs neither constructor nor destructor at run time.
std::mutex formatterMutex;
static_assert(std::is_trivially_destructible_v<std::mutex>);

}  // namespace

Sink::Sink(Formatter formatter, IBackEnd* backEnd) : formatter_(formatter), backEnd_(backEnd) {
    assert(formatter != nullptr && backEnd != nullptr);
}

void Sink::Write(Severity severity, const char* text) {
    const std::lock_guard<std::mutex> guard(mutex_);
    const std::lock_guard<std::mutex> formatterGuard(formatterMutex);
    backEnd_->Write(formatter_(LevelName(severity), text));
}

}  // namespace com_qel::Korvel::LogInterface
