/// \class com_qel::Korvel::LogInterface::StdOutBackEnd
/// Writes lines to the process's standard output.
///
/// It shares the C stream `stdout` with the program's own output, so the two keep their order, and
/// relies on that stream's flushing.
/// Ownership and thread-safety: as IBackEnd.
#pragma once

#include "CoreMisc/Export.h"
#include "CoreMisc/LogInterface/IBackEnd.h"

namespace com_qel::Korvel::LogInterface {

class VANTRIC_EXPORT StdOutBackEnd final : public IBackEnd {
  public:
    void Write(const char* line) override;
};

}  // namespace com_qel::Korvel::LogInterface
