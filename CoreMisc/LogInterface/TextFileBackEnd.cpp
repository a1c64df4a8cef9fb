#include "CoreMisc/LogInterface/TextFileBackEnd.h"

namespace com_qel::Korvel::LogInterface {

TextFileBackEnd::TextFileBackEnd(const std::string& path) : file_(path) {}

void TextFileBackEnd::Write(const char* line) {
    file_ << line << '\n';
    file_.flush();
}

}  // namespace com_qel::Korvel::LogInterface
