#include "CoreMisc/LogInterface/Sink.h"

#include <cassert>

namespace com_qel::Korvel::LogInterface {

Sink::Sink(Formatter formatter, IBackEnd* backEnd) : formatter_(formatter), backEnd_(backEnd) {
    assert(formatter != nullptr && backEnd != nullptr);
}

void Sink::Write(Severity severity, const char* text) {
    const std::lock_guard<std::mutex> guard(mutex_);
    backEnd_->Write(formatter_(LevelName(severity), text));
}

}  // namespace com_qel::Korvel::LogInterface
