// The tables of vantric-protocol(7) against the headers and against what is in shared memory.
#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <type_traits>

#include "Vantric/ClientServer/SharedMemoryCircularBuffer.h"
#include "Vantric/ClientServer/SharedMemoryModemState.h"
#include "Vantric/ModemClient.h"
#include "tests/packaging/ManualPage.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/RawSegment.h"

namespace {

using namespace vantric_test;
using namespace com_qel::Orvane::Vantric;

constexpr const char* page = "vantric-protocol.7";

// A row of a table of offsets: offset, size, type, name.
using Row = std::vector<std::string>;
using Rows = std::vector<Row>;

Rows tableOf(const std::string& heading) {
    return allMatches(pageSection(page, heading),
                      "^\\.It (\\d+) Ta (\\d*) ?Ta (.*?) ?Ta Va (\\w+)");
}

template <class T>
std::string typeName() {
    if constexpr (std::is_same_v<T, int32_t>) {
        return "int32";
    } else if constexpr (std::is_same_v<T, uint32_t>) {
        return "uint32";
    } else if constexpr (std::is_same_v<T, uint8_t>) {
        return "uint8";
    } else if constexpr (std::is_same_v<T, char[sizeof(T)]>) {
        return "char[" + std::to_string(sizeof(T)) + "]";
    } else if constexpr (std::is_same_v<T, unsigned char[sizeof(T)]> && sizeof(T) > 4) {
        return "bytes";
    } else if constexpr (std::is_same_v<T, WifiListEntry[WifiInfosList::maximumCount]>) {
        return std::to_string(WifiInfosList::maximumCount) + " entries";
    } else {
        return "";
    }
}

Row row(std::size_t offset, std::size_t size, const std::string& type, const std::string& name) {
    return {std::to_string(offset), std::to_string(size), type, name};
}

// The row of a field whose record begins `start` bytes behind what the table counts from.
#define ROW(Record, field, start)                                 \
    row(offsetof(Record, field) + (start), sizeof(Record::field), \
        typeName<decltype(Record::field)>(), #field)

// In front of what an object holds stands the number of its users.
constexpr std::size_t behindUsers = sizeof(uint32_t);
Row users() {
    return row(0, behindUsers, "uint32", "attachCount");
}

TEST(ProtocolPage, hasTheOffsetsOfTheStatesHeader) {
    using Layout = ClientServer::SharedMemoryModemState::Layout;
    const Rows rows = {users(), ROW(Layout, version, behindUsers), ROW(Layout, valid, behindUsers),
                       ROW(Layout, reserved, behindUsers)};
    EXPECT_EQ(tableOf(".Sh STATE RECORDS"), rows);
    EXPECT_EQ(wordsIn(pageSource(page), "The record begins at offset (\\d+) of its object"),
              std::set<std::string>{std::to_string(offsetof(Layout, record) + behindUsers)});
}

TEST(ProtocolPage, hasTheOffsetsOfTheState) {
    const Rows rows = {ROW(ModemState, timestamp, 0),          ROW(ModemState, connectivityType, 0),
                       ROW(ModemState, wifiSsid, 0),           ROW(ModemState, wifiPassword, 0),
                       ROW(ModemState, wifiEncryptionType, 0), ROW(ModemState, hostname, 0),
                       ROW(ModemState, wifiConnectionState, 0)};
    EXPECT_EQ(tableOf(".Ss ModemStateShm"), rows);
}

TEST(ProtocolPage, hasTheOffsetsOfTheExtendedState) {
    const Rows rows = {ROW(ModemStateExtended, serverWord, 0),
                       ROW(ModemStateExtended, carrierSignalLevel, 0),
                       ROW(ModemStateExtended, wifiSsid, 0),
                       ROW(ModemStateExtended, wifiEncryptionType, 0),
                       ROW(ModemStateExtended, wifiEncryptionName, 0),
                       ROW(ModemStateExtended, wifiSignalLevel, 0),
                       ROW(ModemStateExtended, ipv4Address, 0),
                       ROW(ModemStateExtended, macAddress, 0),
                       ROW(ModemStateExtended, updateCounter, 0)};
    EXPECT_EQ(tableOf(".Ss ModemStateEx"), rows);
}

TEST(ProtocolPage, hasTheOffsetsOfTheListAndItsEntries) {
    const Rows list = {ROW(WifiInfosList, entries, 0), ROW(WifiInfosList, count, 0),
                       ROW(WifiInfosList, updateCounter, 0)};
    EXPECT_EQ(tableOf(".Ss ModemWifiList"), list);
    const Rows entry = {ROW(WifiListEntry, ssid, 0), ROW(WifiListEntry, encryptionType, 0),
                        ROW(WifiListEntry, signalLevel, 0)};
    EXPECT_EQ(tableOf(".Ss Entry of ModemWifiList"), entry);
}

TEST(ProtocolPage, hasTheSizesOfTheRecords) {
    const std::map<std::string, std::size_t> sizes = {
        {".Ss ModemStateShm", sizeof(ModemState)},
        {".Ss ModemStateEx", sizeof(ModemStateExtended)},
        {".Ss ModemWifiList", sizeof(WifiInfosList)},
        {".Ss Entry of ModemWifiList", sizeof(WifiListEntry)}};
    for (const auto& [heading, size] : sizes) {
        EXPECT_EQ(wordsIn(pageSection(page, heading), "^(?:The record|An entry) has (\\d+) bytes"),
                  std::set<std::string>{std::to_string(size)})
            << heading;
    }
}

TEST(ProtocolPage, hasTheOffsetsOfTheRing) {
    using Memory = ClientServer::SharedMemoryCircularBuffer<unsigned char, 4096>::Memory;
    const std::size_t endOfData = offsetof(Memory, data) + sizeof(Memory::data);
    const Rows rows = {users(),
                       ROW(Memory, initialized, behindUsers),
                       ROW(Memory, producers, behindUsers),
                       ROW(Memory, consumers, behindUsers),
                       ROW(Memory, readIndex, behindUsers),
                       ROW(Memory, writeIndex, behindUsers),
                       ROW(Memory, capacity, behindUsers),
                       ROW(Memory, full, behindUsers),
                       ROW(Memory, empty, behindUsers),
                       ROW(Memory, data, behindUsers),
                       row(endOfData + behindUsers, sizeof(Memory) - endOfData, "", "padding")};
    EXPECT_EQ(tableOf(".Sh RING OF COMMANDS"), rows);
}

TEST(ProtocolPage, hasTheLengthsOfTheObjects) {
    const PublishedServer server;
    const auto objects =
        allMatches(pageSection(page, ".Sh OBJECTS"), "^\\.It Pa (\\w+) Ta (\\d+) Ta");
    ASSERT_EQ(objects.size(), 4U);
    for (const std::vector<std::string>& object : objects) {
        EXPECT_EQ(object.at(1), std::to_string(segmentLength(object.at(0)))) << object.at(0);
    }
}

TEST(ProtocolPage, hasTheNamesOfTheValues) {
    const auto values =
        allMatches(pageSection(page, ".Ss Values"), "^\\.It (\\d) Ta (\\w*) ?Ta (.*)$");
    ASSERT_EQ(values.size(), 7U);
    for (const std::vector<std::string>& value : values) {
        const int32_t number = std::stoi(value.at(0));
        EXPECT_EQ(value.at(2), encryptionTypeName(number));
        EXPECT_EQ(value.at(1), number <= 2 ? connectivityTypeName(number) : "");
    }
    EXPECT_EQ(encryptionTypeName(7), "Unknown encryption type");
}

TEST(ProtocolPage, hasTheCommandsThatTheSimulatorKnows) {
    Command command;
    command.program = VANTRICSIM_PATH;
    command.arguments = {"--list-commands"};
    const auto known = allMatches(run(command).output, "^ *(\\d+) +(\\w+) +payload: (.*)$");
    ASSERT_EQ(known.size(), 11U);
    EXPECT_EQ(allMatches(pageSection(page, ".Sh COMMANDS"), "^\\.It (\\d+) Ta (\\w+) Ta[ \n](.*)$"),
              known);
}

TEST(ProtocolPage, showsTheFrameThatAClientWrites) {
    const Rows frame = {row(0, sizeof(uint32_t), "uint32", "command"),
                        row(4, sizeof(uint32_t), "uint32", "length"),
                        {"8", "", "bytes", "payload"}};
    EXPECT_EQ(tableOf(".Ss Frame"), frame);

    ModemClient client;
    ASSERT_TRUE(client.connect());
    ASSERT_TRUE(client.setWifiConnection("home", 4, "pw"));
    const auto lines = allMatches(pageSection(page, ".Sh EXAMPLES"), "^((?:[0-9a-f]{2} ?)+)$");
    ASSERT_EQ(lines.size(), 1U);
    Bytes shown;
    for (const auto& byte : allMatches(lines.at(0).at(0), "(\\w+)")) {
        shown.push_back(static_cast<unsigned char>(std::stoi(byte.at(0), nullptr, 16)));
    }
    const RawSegment ring("ModemCommandsShm");
    EXPECT_EQ(ring.bytes(30, shown.size()), shown);
    EXPECT_EQ(ring.word(20), shown.size()) << "the client wrote another number of bytes";
}

}  // namespace
