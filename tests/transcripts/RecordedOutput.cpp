#include "tests/transcripts/RecordedOutput.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace vantric_test {

namespace {

// Each write needs a page of the pipe's own; the longest list needs more than a hundred.
constexpr int pipeCapacity = 1 << 20;

constexpr const char* continuation = "             ";

std::string escaped(char character) {
    constexpr unsigned char firstPrintable = 0x20;
    constexpr unsigned char firstUnprintable = 0x7f;
    switch (character) {
        case '\n':
            return "\\n";
        case '\t':
            return "\\t";
        case '\\':
            return "\\\\";
        default:
            break;
    }
    const auto byte = static_cast<unsigned char>(character);
    if (byte >= firstPrintable && byte < firstUnprintable) {
        return {character};
    }
    char text[8];
    std::snprintf(text, sizeof(text), "\\x%02x", static_cast<unsigned int>(byte));
    return text;
}

}  // namespace

std::string timeText(std::chrono::nanoseconds time) {
    const auto milliseconds = static_cast<long>(time / std::chrono::milliseconds(1));
    const long seconds = milliseconds / 1000;
    char text[32];
    std::snprintf(text, sizeof(text), "%02ld:%02ld:%02ld.%03ld", seconds / 3600, seconds / 60 % 60,
                  seconds % 60, milliseconds % 1000);
    return text;
}

std::string escaped(std::string_view bytes) {
    std::string result;
    for (const char character : bytes) {
        result += escaped(character);
    }
    return result;
}

std::string shortened(std::string_view text) {
    constexpr std::size_t longRun = 200;
    std::string result;
    while (!text.empty()) {
        const std::string_view run = text.substr(0, text.find_first_not_of(text[0]));
        result += run.size() < longRun ? std::string(run)
                                       : "\\{" + std::to_string(run.size()) + " " + run[0] + "}";
        text.remove_prefix(run.size());
    }
    return result;
}

RecordedOutput::RecordedOutput() {
    int ends[2];
    // Every write is a packet of its own.
    if (pipe2(ends, O_DIRECT | O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe2");
    }
    readEnd_ = ends[0];
    writeEnd_ = ends[1];
    fcntl(readEnd_, F_SETFL, O_DIRECT | O_NONBLOCK);
    fcntl(readEnd_, F_SETPIPE_SZ, pipeCapacity);
}

RecordedOutput::~RecordedOutput() {
    closeDescriptor();
    close(readEnd_);
}

void RecordedOutput::closeDescriptor() {
    if (writeEnd_ != -1) {
        close(writeEnd_);
        writeEnd_ = -1;
    }
}

void RecordedOutput::collect(const Clock& clock) {
    char packet[1 << 16];
    ssize_t size = 0;
    while ((size = read(readEnd_, packet, sizeof(packet))) > 0) {
        times_.push_back(clock());
        writes_.emplace_back(packet, static_cast<std::size_t>(size));
    }
}

std::string RecordedOutput::text() const {
    std::string result;
    for (std::size_t index = 0; index < writes_.size(); ++index) {
        std::string_view rest = writes_[index];
        std::string margin = timeText(times_[index]) + " ";
        while (!rest.empty()) {
            const std::size_t length = std::min(rest.find('\n'), rest.size() - 1) + 1;
            result.append(margin).append("|").append(escaped(rest.substr(0, length))).append("\n");
            rest.remove_prefix(length);
            margin = continuation;
        }
    }
    return result;
}

void RecordedOutput::change(const std::function<void(std::vector<std::string>& writes)>& change) {
    change(writes_);
}

}  // namespace vantric_test
