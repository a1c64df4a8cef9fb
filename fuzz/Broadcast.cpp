#include "fuzz/Broadcast.h"

#include <cstring>
#include <utility>

#include "fuzz/RecordLayout.h"
#include "tests/support/DequeueOutputs.h"

namespace vantric_fuzz {

namespace {

constexpr unsigned int anyHeader = 1;
constexpr unsigned int anyTimeStamp = 2;

void putWord(Bytes& bytes, std::size_t offset, uint32_t word) {
    std::memcpy(&bytes[offset], &word, sizeof(word));
}

PublishedSegment segmentOf(std::size_t recordSize, const Bytes& content) {
    Bytes bytes = {1, 0, 0, 0, 1, 0, 0, 0};
    const Bytes record = vantric_test::repeated(content, recordSize);
    bytes.insert(bytes.end(), record.begin(), record.end());
    return {bytes};
}

void putIntoRecord(PublishedSegment& segment, std::size_t offset, uint32_t word) {
    putWord(segment.bytes, PublishedSegment::headerSize + offset, word);
}

struct Header {
    uint32_t version;
    uint8_t valid;
};

Header readHeader(Input& input, unsigned int form) {
    if ((form & anyHeader) == 0) {
        return {1, 1};
    }
    const uint32_t version = input.word();
    return {version, input.byte()};
}

PublishedSegment readSegment(Input& input, const Header& header, std::size_t recordSize) {
    PublishedSegment segment = segmentOf(recordSize, input.run());
    putWord(segment.bytes, 0, header.version);
    segment.bytes[4] = header.valid;
    return segment;
}

PublishedSegment readState(Input& input, int64_t now) {
    const unsigned int form = input.byte();
    const Header header = readHeader(input, form);
    const uint32_t timeStamp =
        (form & anyTimeStamp) != 0
            ? input.word()
            : static_cast<uint32_t>(now - static_cast<int16_t>(input.half()));
    PublishedSegment segment = readSegment(input, header, state::size);
    putIntoRecord(segment, state::timestamp, timeStamp);
    return segment;
}

PublishedSegment readExtended(Input& input) {
    const Header header = readHeader(input, input.byte());
    const uint32_t counter = input.byte();
    PublishedSegment segment = readSegment(input, header, extended::size);
    putIntoRecord(segment, extended::updateCounter, counter);
    return segment;
}

PublishedSegment readList(Input& input) {
    const Header header = readHeader(input, input.byte());
    const uint32_t count = input.word();
    const uint32_t counter = input.byte();
    PublishedSegment segment = readSegment(input, header, list::size);
    putIntoRecord(segment, list::count, count);
    putIntoRecord(segment, list::updateCounter, counter);
    return segment;
}

}  // namespace

bool PublishedSegment::isReadable() const {
    return integerAt(bytes, 0) == 1 && bytes[4] == 1;
}

Publication plainPublication(int64_t now) {
    Publication publication = {segmentOf(state::size, {}), segmentOf(extended::size, {}),
                               segmentOf(list::size, {})};
    putIntoRecord(publication.state, state::timestamp, static_cast<uint32_t>(now));
    return publication;
}

Publication readPublication(Input& input, int64_t now) {
    PublishedSegment basic = readState(input, now);
    PublishedSegment more = readExtended(input);
    return {std::move(basic), std::move(more), readList(input)};
}

int32_t integerAt(const Bytes& record, std::size_t offset) {
    int32_t value = 0;
    std::memcpy(&value, &record[offset], sizeof(value));
    return value;
}

std::string textAt(const Bytes& record, std::size_t offset, std::size_t size) {
    std::string text;
    for (std::size_t index = offset; index < offset + size && record[index] != 0; ++index) {
        text.push_back(static_cast<char>(record[index]));
    }
    return text;
}

}  // namespace vantric_fuzz
