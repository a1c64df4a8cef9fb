// The part of a record that needs the standard streams. A program whose records only append is
// linked without it.
#include <sys/time.h>

#include <iomanip>
#include <streambuf>

#include "CoreMisc/src/VyLog.h"

namespace com_qel {

namespace {

// Adds what a stream writes to a text.
class TextBuffer final : public std::streambuf {
  public:
    explicit TextBuffer(std::string& text) : text_(text) {}

  protected:
    std::streamsize xsputn(const char* characters, std::streamsize count) override {
        text_.append(characters, static_cast<std::size_t>(count));
        return count;
    }

    int_type overflow(int_type character) override {
        if (!traits_type::eq_int_type(character, traits_type::eof())) {
            text_.push_back(traits_type::to_char_type(character));
        }
        return traits_type::not_eof(character);
    }

  private:
    std::string& text_;
};

class TextStream final : public std::ostream {
  public:
    explicit TextStream(std::string& text) : std::ostream(nullptr), buffer_(text) {
        rdbuf(&buffer_);
    }

  private:
    TextBuffer buffer_;
};

}  // namespace

std::ostream& VyLog::stream() {
    if (stream_ == nullptr) {
        stream_ = std::make_unique<TextStream>(text_);
        if (category_ != 0) {
            *stream_ << std::left;
        }
    }
    return *stream_;
}

void VyLog::AppendTimestamp(VyLog& record) {
    timeval now = {};
    gettimeofday(&now, nullptr);
    record.stream() << std::dec << std::setfill(' ') << std::setw(12) << now.tv_sec << '.'
                    << std::left << std::setw(8) << now.tv_usec;
}

}  // namespace com_qel
