#include "CoreMisc/LogInterface/StdOutBackEnd.h"

#include <cstdio>

namespace com_qel::Korvel::LogInterface {

void StdOutBackEnd::Write(const char* line) {
    std::puts(line);
}

}  // namespace com_qel::Korvel::LogInterface
