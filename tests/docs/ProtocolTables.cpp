#include "tests/docs/ProtocolTables.h"

#include <algorithm>
#include <functional>
#include <map>

#include "Vantric/ClientServer/SharedMemoryModemCommands.h"
#include "tests/docs/EmptySharedMemory.h"
#include "tests/docs/Layouts.h"
#include "tests/support/PublishedServer.h"
#include "tests/support/RawSemaphore.h"

namespace vantric_test {

namespace {

using Cells = std::vector<std::string>;
using Rows = std::vector<Cells>;
using Vantric::ClientServer::ModemCommand;

// The cells of the named columns, row by row.
Rows cellsOf(const DocumentTable& table, const Cells& columns) {
    Rows rows(table.rows.size());
    for (const std::string& column : columns) {
        const auto found = std::find(table.columns.begin(), table.columns.end(), column);
        if (found == table.columns.end()) {
            throw DocumentFault(table.line, "no column " + column);
        }
        const auto index = static_cast<std::size_t>(found - table.columns.begin());
        for (std::size_t row = 0; row < rows.size(); ++row) {
            rows[row].push_back(table.rows[row].cells[index]);
        }
    }
    return rows;
}

std::string textOf(const Cells& cells) {
    std::string text;
    for (const std::string& cell : cells) {
        text += "| " + cell + " ";
    }
    return text;
}

void requireRows(const DocumentTable& table, const Cells& columns, const Rows& expected) {
    const Rows rows = cellsOf(table, columns);
    for (std::size_t index = 0; index < std::min(rows.size(), expected.size()); ++index) {
        if (rows[index] != expected[index]) {
            throw DocumentFault(table.rows[index].line, "must be " + textOf(expected[index]));
        }
    }
    if (rows.size() != expected.size()) {
        throw DocumentFault(table.line, "must have " + std::to_string(expected.size()) + " rows");
    }
}

void compareLayout(const DocumentTable& table, const std::string& name) {
    Rows expected;
    for (const Field& field : layoutOf(name)) {
        expected.push_back(
            {std::to_string(field.offset), std::to_string(field.size), field.type, field.name});
    }
    requireRows(table, {"offset", "size", "type", "field"}, expected);
}

// Of the objects that a server creates.
void compareObjects(const DocumentTable& table) {
    emptySharedMemory();
    const PublishedServer server;
    const std::vector<std::string> names = sharedMemoryNames();
    Rows expected;
    for (const char* object :
         {"ModemStateShm", "ModemStateEx", "ModemWifiList", "ModemCommandsShm"}) {
        const std::string name = object;
        expected.push_back(
            {name, std::to_string(segmentLength(name)), name + "Lock", name + "ProviderLock"});
        for (const char* lock : {"Lock", "ProviderLock"}) {
            semaphoreValue(name + lock);
        }
    }
    requireRows(table, {"object", "size", "contents lock", "count lock"}, expected);
    if (names.size() != 3 * expected.size()) {
        throw DocumentFault(table.line, "a server has other objects than these");
    }
}

// As a frame in the ring shows it, whose data begin with it.
void compareFrame(const DocumentTable& table) {
    emptySharedMemory();
    Vantric::ClientServer::SharedMemoryModemCommands producer(false);
    const std::string payload = "payload";
    producer.enqueue(0x04030201, payload.data(), static_cast<uint32_t>(payload.size()));
    const Bytes ring =
        RawSegment("ModemCommandsShm").bytes(fieldOf(layoutOf("Ring"), "data").offset, 64);
    const auto placeOf = [&](const Bytes& bytes) {
        const auto place = std::search(ring.begin(), ring.end(), bytes.begin(), bytes.end());
        return std::to_string(place - ring.begin());
    };
    Bytes length;
    appendWord(length, static_cast<uint32_t>(payload.size()));
    requireRows(
        table, {"offset", "size", "type", "field"},
        {{placeOf({1, 2, 3, 4}), "4", "uint32", "command"},
         {placeOf(length), "4", "uint32", "length"},
         {placeOf(Bytes(payload.begin(), payload.end())), "length", "uint8[length]", "payload"}});
}

void compareCommands(const DocumentTable& table) {
    const std::pair<ModemCommand, const char*> commands[] = {
        {ModemCommand::SwitchToWifi, "SwitchToWifi"},
        {ModemCommand::SwitchToCarrier, "SwitchToCarrier"},
        {ModemCommand::SetWifiSsid, "SetWifiSsid"},
        {ModemCommand::SetWifiPasswordAndEncryptionType, "SetWifiPasswordAndEncryptionType"},
        {ModemCommand::SetConfig, "SetConfig"},
        {ModemCommand::RequestWifiList, "RequestWifiList"},
        {ModemCommand::RequestModemStatus, "RequestModemStatus"},
        {ModemCommand::SendText, "SendText"},
        {ModemCommand::SendTextPair, "SendTextPair"},
        {ModemCommand::SetWifiConnection, "SetWifiConnection"},
        {ModemCommand::SetWifiConnectionRadius, "SetWifiConnectionRadius"}};
    Rows expected;
    for (const auto& [command, name] : commands) {
        expected.push_back({std::to_string(static_cast<uint32_t>(command)), name});
    }
    requireRows(table, {"id", "name"}, expected);
}

// A row for each encryption type, which are more than the connectivities, and one for the others.
void compareNames(const DocumentTable& table) {
    const auto last = static_cast<int32_t>(Vantric::EncryptionType::WpaWpa2Enterprise);
    Rows expected;
    for (int32_t value = 0; value <= last + 1; ++value) {
        expected.push_back({value <= last ? std::to_string(value) : "any other",
                            Vantric::connectivityTypeName(value),
                            Vantric::encryptionTypeName(value)});
    }
    requireRows(
        table, {"value", "connectivityType shows as", "wifiEncryptionType, encryptionType show as"},
        expected);
}

const std::map<std::string, std::function<void(const DocumentTable&)>>& comparisons() {
    static const auto table = [] {
        std::map<std::string, std::function<void(const DocumentTable&)>> result = {
            {"objects", compareObjects},
            {"Frame", compareFrame},
            {"commands", compareCommands},
            {"names", compareNames}};
        for (const std::string& name : layoutNames()) {
            result[name] = [name](const DocumentTable& layout) { compareLayout(layout, name); };
        }
        return result;
    }();
    return table;
}

constexpr const char* commentPrefix = "table: ";

}  // namespace

std::vector<std::string> tableNames() {
    std::vector<std::string> names;
    for (const auto& entry : comparisons()) {
        names.push_back(commentPrefix + entry.first);
    }
    return names;
}

void compareTable(const DocumentTable& table) {
    const std::string prefix = commentPrefix;
    const bool isNamed = table.comment.rfind(prefix, 0) == 0;
    const auto comparison = comparisons().find(isNamed ? table.comment.substr(prefix.size()) : "");
    if (comparison == comparisons().end()) {
        throw DocumentFault(table.line, "no such table: " + table.comment);
    }
    comparison->second(table);
}

bool needsName(const DocumentTable& table) {
    return std::any_of(table.columns.begin(), table.columns.end(), [](const std::string& column) {
        return column == "offset" || column == "size" || column == "id" || column == "value";
    });
}

}  // namespace vantric_test
