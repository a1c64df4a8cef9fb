// The tables of docs/protocol.md against the library's headers and the simulator's commands.
#include <gtest/gtest.h>

#include <cstddef>
#include <fstream>
#include <regex>

#include "Vantric/ClientServer/SharedMemoryCircularBuffer.h"
#include "Vantric/ClientServer/SharedMemoryModemState.h"
#include "sim/CommandTable.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/RawSegment.h"

namespace {

using namespace com_qel::Orvane::Vantric;
using Rows = std::vector<std::string>;

// Of each table row that matches, the columns that the pattern's groups catch, in the document's
// order.
Rows rowsOf(const char* pattern) {
    const std::regex form(pattern);
    std::ifstream document(SOURCE_FOLDER "/docs/protocol.md");
    Rows rows;
    std::smatch match;
    for (std::string line; std::getline(document, line);) {
        if (std::regex_search(line, match, form)) {
            std::string row = match[1];
            for (std::size_t group = 2; group < match.size(); ++group) {
                row += " " + match[group].str();
            }
            rows.push_back(row);
        }
    }
    return rows;
}

std::string row(std::size_t offset, std::size_t size, const char* field) {
    return std::to_string(offset) + " " + std::to_string(size) + " " + field;
}

// A field of a record; `start` is the offset of the record in its table.
#define FIELD(Record, field, start) \
    row(offsetof(Record, field) + (start), sizeof(Record::field), #field)

TEST(ProtocolDocument, hasTheOffsetsAndSizesOfEveryField) {
    using Segment = ClientServer::SharedMemoryModemState::Layout;
    using Ring = ClientServer::SharedMemoryCircularBuffer<unsigned char, 4096>::Memory;
    constexpr std::size_t count = sizeof(uint32_t);  // the attach count stands first
    constexpr std::size_t ringEnd = offsetof(Ring, data) + sizeof(Ring::data);
    const Rows fields = {row(0, count, "attachCount"),
                         FIELD(Segment, version, count),
                         FIELD(Segment, valid, count),
                         FIELD(Segment, reserved, count),
                         FIELD(ModemState, timestamp, 0),
                         FIELD(ModemState, connectivityType, 0),
                         FIELD(ModemState, wifiSsid, 0),
                         FIELD(ModemState, wifiPassword, 0),
                         FIELD(ModemState, wifiEncryptionType, 0),
                         FIELD(ModemState, hostname, 0),
                         FIELD(ModemState, wifiConnectionState, 0),
                         FIELD(ModemStateExtended, serverWord, 0),
                         FIELD(ModemStateExtended, carrierSignalLevel, 0),
                         FIELD(ModemStateExtended, wifiSsid, 0),
                         FIELD(ModemStateExtended, wifiEncryptionType, 0),
                         FIELD(ModemStateExtended, wifiEncryptionName, 0),
                         FIELD(ModemStateExtended, wifiSignalLevel, 0),
                         FIELD(ModemStateExtended, ipv4Address, 0),
                         FIELD(ModemStateExtended, macAddress, 0),
                         FIELD(ModemStateExtended, updateCounter, 0),
                         FIELD(WifiInfosList, entries, 0),
                         FIELD(WifiInfosList, count, 0),
                         FIELD(WifiInfosList, updateCounter, 0),
                         FIELD(WifiListEntry, ssid, 0),
                         FIELD(WifiListEntry, encryptionType, 0),
                         FIELD(WifiListEntry, signalLevel, 0),
                         row(0, count, "attachCount"),
                         FIELD(Ring, initialized, count),
                         FIELD(Ring, producers, count),
                         FIELD(Ring, consumers, count),
                         FIELD(Ring, readIndex, count),
                         FIELD(Ring, writeIndex, count),
                         FIELD(Ring, capacity, count),
                         FIELD(Ring, full, count),
                         FIELD(Ring, empty, count),
                         FIELD(Ring, data, count),
                         row(count + ringEnd, sizeof(Ring) - ringEnd, "padding"),
                         row(0, sizeof(uint32_t), "command"),
                         row(4, sizeof(uint32_t), "length")};
    EXPECT_EQ(rowsOf(R"(^\| (\d+) \| (\d+) \| `[^|]*` \| `(\w+)` \|)"), fields);
}

#undef FIELD

TEST(ProtocolDocument, hasTheSizesOfTheObjects) {
    const vantric_test::PublishedServer server;
    Rows objects;
    for (const std::string name :
         {"ModemStateShm", "ModemStateEx", "ModemWifiList", "ModemCommandsShm"}) {
        std::string object = name;
        object.append(" ").append(std::to_string(vantric_test::segmentLength(name)));
        object.append(" ").append(name).append("Lock ").append(name).append("ProviderLock");
        objects.push_back(object);
    }
    EXPECT_EQ(rowsOf(R"(^\| `(\w+)` \| (\d+) \| `(\w+)` \| `(\w+)` \|)"), objects);
}

TEST(ProtocolDocument, hasTheDisplayNames) {
    Rows names;
    for (int32_t value = 0; value <= 7; ++value) {
        names.push_back((value < 7 ? std::to_string(value) : "any other") + " " +
                        connectivityTypeName(value) + " " + encryptionTypeName(value));
    }
    EXPECT_EQ(rowsOf(R"(^\| (\d|any other) \| ([A-Z][\w ]+) \| ([A-Z][^|`]+) \|$)"), names);
}

TEST(ProtocolDocument, hasTheCommandsThatTheSimulatorKnows) {
    Rows commands;
    for (const vantric_sim::CommandDescription& known : vantric_sim::commandTable) {
        commands.push_back(std::to_string(static_cast<uint32_t>(known.command)) + " " + known.name);
    }
    EXPECT_EQ(rowsOf(R"(^\| (\d+) \| `([A-Z]\w+)` \|)"), commands);
}

}  // namespace
