// The part of a record that needs the standard streams; what appends only is linked without it.
#include <sys/time.h>

#include <atomic>
#include <iomanip>
#include <locale>
#include <streambuf>

#include "CoreMisc/src/VyLog.h"

namespace com_qel {

namespace {

// Adds what a stream writes to a text.
class TextBuffer final : public std::streambuf {
  public:
    void addTo(std::string& text) { text_ = &text; }

  protected:
    std::streamsize xsputn(const char* characters, std::streamsize count) override {
        text_->append(characters, static_cast<std::size_t>(count));
        return count;
    }

    int_type overflow(int_type character) override {
        if (!traits_type::eq_int_type(character, traits_type::eof())) {
            text_->push_back(traits_type::to_char_type(character));
        }
        return traits_type::not_eof(character);
    }

  private:
    std::string* text_ = nullptr;
};

}  // namespace

// Making a stream costs more than all the rest of a record, nearly all of it the locale's. So the
// stream of the last record is kept for the next. A record that is streamed while another has it,
// or after the global locale has changed, gets one of its own.
class VyLog::Stream {
  public:
    static LentStream lendFor(std::string& text) {
        Stream* lent = kept.exchange(nullptr);
        if (lent == nullptr || lent->stream_.getloc() != std::locale()) {
            delete lent;
            lent = new Stream;
        }
        lent->renewFor(text);
        return {lent, takeBack};
    }

    std::ostream& stream() { return stream_; }

  private:
    static void takeBack(Stream* lent) { delete kept.exchange(lent); }

    // Makes it format, and fail, like a new one.
    void renewFor(std::string& text) {
        buffer_.addTo(text);
        stream_.exceptions(std::ios_base::goodbit);
        stream_.rdbuf(&buffer_);
        stream_.tie(nullptr);
        stream_.flags(std::ios_base::skipws | std::ios_base::dec);
        stream_.width(0);
        stream_.precision(6);
        stream_.fill(' ');
    }

    // Never destroyed: a record may come from the destructor of any static.
    static std::atomic<Stream*> kept;

    TextBuffer buffer_;
    std::ostream stream_{&buffer_};
};

std::atomic<VyLog::Stream*> VyLog::Stream::kept{nullptr};

std::ostream& VyLog::stream() {
    if (stream_ == nullptr) {
        stream_ = Stream::lendFor(text_);
        if (category_ != 0) {
            stream_->stream() << std::left;
        }
    }
    return stream_->stream();
}

void VyLog::AppendTimestamp(VyLog& record) {
    timeval now = {};
    gettimeofday(&now, nullptr);
    record.stream() << std::dec << std::setfill(' ') << std::setw(12) << now.tv_sec << '.'
                    << std::left << std::setw(8) << now.tv_usec;
}

}  // namespace com_qel
