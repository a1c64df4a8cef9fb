#include "sim/RecordFields.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace vantric_sim {

namespace {

using com_qel::Orvane::Vantric::networkFields;
using com_qel::Orvane::Vantric::WifiInfosList;
using com_qel::Orvane::Vantric::WifiListEntry;

std::string bytesOf(const JsonValue& value, const RecordField& field) {
    std::string bytes(field.size, '\0');
    if (field.kind == RecordField::Kind::Text) {
        writeText(bytes.data(), bytes.size(), value.text(field.size - 1));
    } else {
        using Limits = std::numeric_limits<int32_t>;
        const auto number = static_cast<int32_t>(value.integer(Limits::min(), Limits::max()));
        std::memcpy(bytes.data(), &number, sizeof(number));
    }
    return bytes;
}

}  // namespace

FieldChanges readChanges(const JsonValue& object, const RecordFields& table) {
    FieldChanges changes;
    std::vector<JsonValue::Key> keys;
    for (const RecordField& field : table) {
        keys.push_back({field.key, [&](const JsonValue& value) {
                            changes.push_back({field.offset, bytesOf(value, field)});
                        }});
    }
    object.object(keys);
    return changes;
}

std::vector<WifiListEntry> readNetworks(const JsonValue& array) {
    std::vector<WifiListEntry> networks;
    for (const JsonValue& element : array.elements(WifiInfosList::maximumCount)) {
        WifiListEntry entry = {};
        applyChanges(&entry, readChanges(element, networkFields()));
        element.member("ssid", "the network's name");
        networks.push_back(entry);
    }
    return networks;
}

void applyChanges(void* record, const FieldChanges& changes) {
    for (const FieldChange& change : changes) {
        change.bytes.copy(static_cast<char*>(record) + change.offset, change.bytes.size());
    }
}

void writeText(char* field, std::size_t size, const std::string& value) {
    const std::size_t length = std::min(value.size(), size - 1);
    std::copy_n(value.begin(), length, field);
    std::fill_n(field + length, size - length, '\0');
}

}  // namespace vantric_sim
