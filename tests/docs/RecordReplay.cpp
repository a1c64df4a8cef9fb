#include <regex>

#include "Vantric/ModemClient.h"
#include "tests/docs/ByteLines.h"
#include "tests/docs/EmptySharedMemory.h"
#include "tests/docs/Layouts.h"
#include "tests/docs/ProtocolBlocks.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/WallClockAt.h"

namespace vantric_test {

namespace {

using namespace Vantric;
using namespace Vantric::ClientServer;

// A field of a record and its value, as bytes.
struct Assignment {
    int line;
    Field field;
    Bytes value;
};

struct RecordExample {
    std::string object;
    std::vector<Assignment> assignments;
    std::vector<ByteLine> bytes;
};

// `path` is a field's name, or entries[N].NAME in a list.
Field recordField(const std::string& layoutName, const std::string& path) {
    static const std::regex entryForm(R"(entries\[([0-9]{1,2})\]\.(.*))");
    std::smatch match;
    if (!std::regex_match(path, match, entryForm)) {
        return fieldOf(layoutOf(layoutName), path);
    }
    Field field = fieldOf(layoutOf("WifiListEntry"), match[2]);
    field.offset += fieldOf(layoutOf(layoutName), "entries").offset +
                    std::stoul(match[1]) * sizeof(WifiListEntry);
    return field;
}

// What hex dumps show beside the bytes.
std::string shownText(const Bytes& bytes) {
    std::string text = "|";
    for (const unsigned char byte : bytes) {
        const bool isPrintable = byte >= 0x20 && byte < 0x7f;
        text += isPrintable ? static_cast<char>(byte) : '.';
    }
    return text + "|";
}

RecordExample parseExample(const CodeBlock& block, const std::string& layoutName) {
    static const std::regex assignmentForm("([^ ]+) = (.+)");
    RecordExample example;
    for (const TextLine& line : block.lines) {
        std::smatch match;
        if (isByteLine(line)) {
            example.bytes.push_back(parseByteLine(line));
            if (example.bytes.back().note != shownText(example.bytes.back().bytes)) {
                throw DocumentFault(line.number,
                                    "the text is " + shownText(example.bytes.back().bytes));
            }
        } else if (std::regex_match(line.text, match, assignmentForm)) {
            const Field field = recordField(layoutName, match[1]);
            example.assignments.push_back({line.number, field, encoded(match[2], field.size)});
        } else if (!line.text.empty()) {
            throw DocumentFault(line.number, "neither field nor bytes: " + line.text);
        }
    }
    if (example.bytes.empty() || example.assignments.empty()) {
        throw DocumentFault(block.line, "no bytes or no fields");
    }
    return example;
}

// What the state's getters tell of the same bytes.
template <class Record>
void requireSameOfClient(const Record&, int) {}

void requireSameOfClient(const ModemState& state, int line) {
    const WallClockAt clock(state.timestamp);
    ModemClient client;
    client.connect();
    int32_t connectivityType = -1;
    int32_t encryptionType = -1;
    std::string ssid;
    std::string password;
    std::string hostname;
    std::string connection;
    const bool isRead = client.getConnectivityType(connectivityType) && client.getWifiSSID(ssid) &&
                        client.getWifiPasswordAndEncryptionType(encryptionType, password) &&
                        client.getHostname(hostname) && client.getWifiConnectionState(connection);
    if (!isRead || connectivityType != state.connectivityType || ssid != state.wifiSsid ||
        password != state.wifiPassword || encryptionType != state.wifiEncryptionType ||
        hostname != state.hostname || connection != state.wifiConnectionState) {
        throw DocumentFault(line, "the client's getters do not give the fields");
    }
}

template <class Record>
Bytes bytesOfRecord(const Record& record) {
    const auto* first = reinterpret_cast<const unsigned char*>(&record);
    return Bytes(first, first + sizeof(record));
}

// The object's bytes behind a server that alone is attached and publishes the fields.
template <class Segment, class Record>
Bytes published(const RecordExample& example) {
    emptySharedMemory();
    Bytes bytes(sizeof(Record));
    for (const Assignment& assignment : example.assignments) {
        overlay(bytes, {assignment.field.offset, assignment.value, ""}, assignment.line);
    }
    Record record;
    std::memcpy(static_cast<void*>(&record), bytes.data(), sizeof(record));
    Segment segment;
    segment.publish(record);
    return RawSegment(example.object).bytes();
}

template <class Segment, class Record>
void requireReadable(const RecordExample& example, const Bytes& image, int line) {
    emptySharedMemory();
    RawSegment object(example.object, image.size());
    object.write(0, image);
    Record record;
    Segment segment;
    if (!segment.read(record)) {
        throw DocumentFault(line, "a reader does not accept the bytes");
    }
    const Bytes bytes = bytesOfRecord(record);
    for (const Assignment& assignment : example.assignments) {
        const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(assignment.field.offset);
        if (!std::equal(assignment.value.begin(), assignment.value.end(), first)) {
            throw DocumentFault(assignment.line, "a reader does not find " + assignment.field.name);
        }
    }
    requireSameOfClient(record, line);
}

template <class Segment, class Record>
void replay(const CodeBlock& block, const char* object, const char* layoutName) {
    RecordExample example = parseExample(block, layoutName);
    example.object = object;
    const Bytes actual = published<Segment, Record>(example);
    Bytes image(actual.size());
    for (const ByteLine& bytes : example.bytes) {
        overlay(image, bytes, block.line);
    }
    requireEqual(actual, image, block.line);
    requireReadable<Segment, Record>(example, image, block.line);
}

}  // namespace

void replayRecord(const CodeBlock& block) {
    if (block.kind == "record ModemStateShm") {
        replay<SharedMemoryModemState, ModemState>(block, "ModemStateShm", "ModemState");
    } else if (block.kind == "record ModemStateEx") {
        replay<SharedMemoryModemStateExtended, ModemStateExtended>(block, "ModemStateEx",
                                                                   "ModemStateExtended");
    } else if (block.kind == "record ModemWifiList") {
        replay<SharedMemoryWifiList, WifiInfosList>(block, "ModemWifiList", "WifiInfosList");
    } else {
        throw DocumentFault(block.line, "no such object: " + block.kind);
    }
}

}  // namespace vantric_test
