#include "CoreMisc/LogInterface/TextFileBackEnd.h"

#include "CoreMisc/LogInterface/LineFile.h"

namespace com_qel::Korvel::LogInterface {

TextFileBackEnd::TextFileBackEnd(const std::string& path)
    : file_(std::make_unique<LineFile>(path)) {}

TextFileBackEnd::~TextFileBackEnd() = default;

void TextFileBackEnd::Write(const char* line) {
    file_->write(line);
}

}  // namespace com_qel::Korvel::LogInterface
