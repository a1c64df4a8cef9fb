#include "tests/docs/RingNotes.h"

#include <algorithm>
#include <regex>
#include <stdexcept>
#include <utility>

namespace vantric_test {

namespace {

constexpr const char* continuation = "...";

const Field& dataField() {
    return fieldOf(layoutOf("Ring"), "data");
}

// The bytes that one part of a line's note speaks of, whose place is `offset`.
Bytes partBytes(const std::string& part, std::size_t offset) {
    static const std::regex frameField("(?:command|length) ([0-9]+)");
    static const std::regex headerField("([a-zA-Z]+) ([0-9]+)");
    std::smatch match;
    if (std::regex_match(part, match, frameField)) {
        return encoded(match[1], sizeof(uint32_t));
    }
    if (std::regex_match(part, match, headerField)) {
        const Field& field = fieldOf(layoutOf("Ring"), match[1]);
        if (field.offset != offset) {
            throw std::runtime_error("not the place of " + field.name);
        }
        return encoded(match[2], field.size);
    }
    const std::string payload = payloadOf(part);
    return Bytes(payload.begin(), payload.end());
}

}  // namespace

void RingNotes::read(const ByteLine& line) {
    static const std::regex separator("; ");
    const bool goesOn = line.note.rfind(continuation, 0) == 0;
    if (goesOn != !rest_.empty() || (goesOn && line.offset != dataField().offset)) {
        throw std::runtime_error("not where a split field goes on");
    }
    Bytes bytes;
    const std::sregex_token_iterator parts(line.note.begin(), line.note.end(), separator, -1);
    for (auto part = parts; part != std::sregex_token_iterator(); ++part) {
        const Bytes more = bytesOf(*part, line, bytes.size());
        bytes.insert(bytes.end(), more.begin(), more.end());
    }
    if (bytes != line.bytes) {
        throw std::runtime_error("the bytes are not " + line.note);
    }
}

void RingNotes::requireEnd() const {
    if (!rest_.empty()) {
        throw std::runtime_error("the rest of a split field is missing");
    }
}

Bytes RingNotes::bytesOf(const std::string& part, const ByteLine& line, std::size_t position) {
    static const std::regex split("(.+) \\.\\.\\.");
    std::smatch match;
    if (part == continuation) {
        return std::exchange(rest_, {});
    }
    if (!std::regex_match(part, match, split)) {
        return partBytes(part, line.offset + position);
    }
    Bytes bytes = partBytes(match[1], line.offset + position);
    const std::size_t room = line.bytes.size() - std::min(position, line.bytes.size());
    const bool endsWithData =
        line.offset + line.bytes.size() == dataField().offset + dataField().size;
    if (room >= bytes.size() || !endsWithData) {
        throw std::runtime_error("not where a field is split");
    }
    rest_.assign(bytes.begin() + static_cast<std::ptrdiff_t>(room), bytes.end());
    bytes.resize(room);
    return bytes;
}

}  // namespace vantric_test
