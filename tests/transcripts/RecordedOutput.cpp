#include "tests/transcripts/RecordedOutput.h"

#include <fcntl.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
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

// The end to read is the one that a terminal emulator would have.
void openTerminal(int (&ends)[2]) {
    termios settings = {};
    cfmakeraw(&settings);
    if (openpty(&ends[0], &ends[1], nullptr, &settings, nullptr) != 0) {
        throw std::system_error(errno, std::generic_category(), "openpty");
    }
    fcntl(ends[0], F_SETFD, FD_CLOEXEC);
    fcntl(ends[1], F_SETFD, FD_CLOEXEC);
    fcntl(ends[0], F_SETFL, O_NONBLOCK);
}

}  // namespace

std::string timeText(std::chrono::nanoseconds time) {
    const auto milliseconds = static_cast<long>(time / std::chrono::milliseconds(1));
    const long wholeSeconds = milliseconds / 1000;
    char text[32];
    std::snprintf(text, sizeof(text), "%02ld:%02ld:%02ld.%03ld", wholeSeconds / 3600,
                  wholeSeconds / 60 % 60, wholeSeconds % 60, milliseconds % 1000);
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

RecordedOutput::RecordedOutput(Kind kind) : joinsWrites_(kind == Kind::Terminal) {
    int ends[2];
    if (kind == Kind::Terminal) {
        openTerminal(ends);
        readEnd_ = ends[0];
        writeEnd_ = ends[1];
        return;
    }
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
        const std::chrono::nanoseconds now = clock();
        if (joinsWrites_ && !times_.empty() && times_.back() == now) {
            writes_.back().append(packet, static_cast<std::size_t>(size));
            continue;
        }
        times_.push_back(now);
        writes_.emplace_back(packet, static_cast<std::size_t>(size));
    }
}

std::string RecordedOutput::text() const {
    std::string result;
    for (std::size_t index = 0; index < writes_.size();) {
        const Repetition repetition = repetitionAt(index);
        const std::size_t end = index + repetition.length;
        for (; index < end; ++index) {
            result += writeText(index);
        }
        if (repetition.count > 0) {
            const std::string what =
                repetition.length == 1
                    ? "again "
                    : "the last " + std::to_string(repetition.length) + " writes again ";
            result += std::string(continuation) + "(" + what + std::to_string(repetition.count) +
                      " times, every " + timeText(times_[end] - times_[end - repetition.length]) +
                      ")\n";
            index += repetition.count * repetition.length;
        }
    }
    return result;
}

// The shortest series of writes from `first` on that comes often again at equal intervals; else the
// one write.
RecordedOutput::Repetition RecordedOutput::repetitionAt(std::size_t first) const {
    constexpr std::size_t longestSeries = 10;
    constexpr std::size_t often = 3;
    for (std::size_t length = 1; length <= longestSeries; ++length) {
        std::size_t index = first;
        while (index + length < writes_.size() && writes_[index] == writes_[index + length] &&
               times_[index + length] - times_[index] == times_[first + length] - times_[first]) {
            ++index;
        }
        const std::size_t count = (index - first) / length;
        if (count >= often) {
            return {length, count};
        }
    }
    return {1, 0};
}

std::string RecordedOutput::writeText(std::size_t index) const {
    std::string result;
    std::string_view rest = writes_[index];
    std::string margin = timeText(times_[index]) + " ";
    while (!rest.empty()) {
        const std::size_t length = std::min(rest.find('\n'), rest.size() - 1) + 1;
        result.append(margin).append("|").append(escaped(rest.substr(0, length))).append("\n");
        rest.remove_prefix(length);
        margin = continuation;
    }
    return result;
}

void RecordedOutput::change(const std::function<void(std::vector<std::string>& writes)>& change) {
    change(writes_);
}

}  // namespace vantric_test
